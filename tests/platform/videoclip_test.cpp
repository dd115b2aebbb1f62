// Video clips made by the ffmpeg program, decoded frame by frame.
#include "platform/videoclip.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "support/testsupport.h"

namespace {

constexpr int kWidth = 32, kHeight = 16, kFrames = 12;

// Reads frames out of order from a clip of 12 frames at 10 per second whose pixel (x, y) in
// frame n is (20 n, 6 x, 12 y). `largest` bounds every sample's error, `mean` the average one
// (frames are 20 steps of red apart, so a wrong frame exceeds it).
void ExpectFramesInAnyOrder(VideoClip& clip, int largest, double mean) {
    std::vector<unsigned char> rgba(kWidth * kHeight * 4);
    for (const int frame : {0, 1, 2, 7, 3, 11, 10, 5, 5, 0, 9, 6}) {
        ASSERT_EQ(clip.ReadFrame(frame, rgba.data()), 1) << frame;
        int worst = 0;
        double sum = 0;
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const int expected[4] = {20 * frame, 6 * (i % kWidth), 12 * (i / kWidth), 255};
            for (int c = 0; c < 4; ++c) {
                worst = std::max(worst, std::abs(rgba[4 * i + c] - expected[c]));
                sum += std::abs(rgba[4 * i + c] - expected[c]);
            }
        }
        EXPECT_LE(worst, largest) << "frame " << frame;
        EXPECT_LE(sum / (kWidth * kHeight * 4), mean) << "frame " << frame;
    }
    EXPECT_EQ(clip.ReadFrame(kFrames, rgba.data()) + clip.ReadFrame(-1, rgba.data()) +
                  clip.ReadFrame(0, nullptr),
              0);
}

TEST(VideoClip, DecodesEveryFrameInAnyOrderSeekingToKeyFrames) {
    TempDir dir;
    const int before = VideoClip_OpenCount();
    // Uncompressed frames come back exactly. Motion JPEG: every frame stands alone; MPEG-4
    // with a key frame every 4 frames: a frame between key frames needs the ones before it.
    // Both subsample and quantise chroma, which blurs the colour gradients a little; frames
    // are 20 steps of red apart.
    for (const auto& [codec, largest, mean] :
         {std::make_tuple("-c:v rawvideo -pix_fmt bgr24", 0, 0.0),
          std::make_tuple("-c:v mjpeg -q:v 1", 18, 3.0),
          std::make_tuple("-c:v mpeg4 -q:v 1 -g 4", 18, 3.0)}) {
        const std::string path = dir.File("clip.avi");
        const std::string command =
            "/usr/bin/ffmpeg -v error -y -f lavfi -i \"nullsrc=s=32x16:r=10,format=rgb24,"
            "geq=r='N*20':g='X*6':b='Y*12'\" -frames:v 12 " +
            std::string(codec) + " '" + path + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        std::unique_ptr<VideoClip> clip(VideoClip::Open(path.c_str()));
        ASSERT_TRUE(clip) << codec;
        EXPECT_EQ((std::vector<float>{float(clip->Width()), float(clip->Height()),
                                      float(clip->NumFrames()), clip->FramesPerSecond()}),
                  (std::vector<float>{kWidth, kHeight, kFrames, 10.0f}));
        std::unique_ptr<VideoClip> second(VideoClip::Open(path.c_str()));
        EXPECT_EQ(VideoClip_OpenCount(), before + 2);
        second.reset();  // the other clip keeps working
        ExpectFramesInAnyOrder(*clip, largest, mean);
    }
    EXPECT_EQ(VideoClip_OpenCount(), before);
    WriteFileBytes(dir.File("text.avi"), "RIFF but not really a clip at all");
    for (const std::string name : {"text.avi", "absent.avi"})
        EXPECT_EQ(VideoClip::Open(dir.File(name).c_str()), nullptr) << name;
    EXPECT_EQ(VideoClip::Open(nullptr), nullptr);
    EXPECT_EQ(VideoClip_OpenCount(), before);
}

}  // namespace
