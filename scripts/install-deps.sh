#!/usr/bin/env bash
# Installs every Debian package Orvane Core needs to build, test, benchmark and fuzz.
# Idempotent: when everything is present it only checks, quietly and quickly.
set -euo pipefail

packages=(
    # toolchain and build
    g++ cmake ninja-build pkg-config
    # tests, benchmarks and the test-only oracle
    googletest libgtest-dev libgmock-dev libbenchmark-dev libeigen3-dev
    # formatting check and fuzzing (clang with libFuzzer)
    clang-format clang libclang-rt-14-dev
    # drawing and contexts: OpenGL 1.1 + GLU, EGL, and Mesa's software rasteriser for headless
    # contexts in tests
    libgl-dev libglu1-mesa-dev libegl-dev libegl-mesa0 libgl1-mesa-dri
    # image codecs and video clips
    libpng-dev libjpeg62-turbo-dev libstb-dev libavformat-dev libavcodec-dev libswscale-dev
    libavutil-dev
    # independent decoders and encoders the image tests compare against
    imagemagick ffmpeg
)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = "installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
