// Video clips made by the ffmpeg program, decoded frame by frame.
#include "platform/videoclip.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

constexpr int kWidth = 32, kHeight = 16, kFrames = 12;

// A clip of kFrames frames at 10 per second whose pixel (x, y) in frame n is
// (20 n, 6 x, 12 y): every frame, column and row tells itself apart.
std::string MakeClip(const TempDir& dir, const std::string& name, const std::string& codec) {
    const std::string path = dir.File(name);
    const std::string command =
        "/usr/bin/ffmpeg -v error -y -f lavfi -i \"nullsrc=s=" + std::to_string(kWidth) + "x" +
        std::to_string(kHeight) + ":r=10,format=rgb24,geq=r='N*20':g='X*6':b='Y*12'\" -frames:v " +
        std::to_string(kFrames) + " " + codec + " '" + path + "' 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return path;
}

struct FrameError {
    int largest = 0;
    double mean = 0;     // over all samples
    double meanRed = 0;  // the red of the decoded frame, which tells the frame apart
};

// How far the decoded frame is from the colours frame `frame` was made with.
FrameError Measure(const std::vector<unsigned char>& rgba, int frame) {
    FrameError error;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            unsigned char const* pixel = &rgba[4 * (y * kWidth + x)];
            const int expected[4] = {20 * frame, 6 * x, 12 * y, 255};
            for (int c = 0; c < 4; ++c) {
                const int delta = std::abs(pixel[c] - expected[c]);
                error.largest = std::max(error.largest, delta);
                error.mean += delta;
            }
            error.meanRed += pixel[0];
        }
    error.mean /= kWidth * kHeight * 4;
    error.meanRed /= kWidth * kHeight;
    return error;
}

// Reads frames out of order; `largest` bounds every sample's error, `mean` the average one.
void ExpectFramesInAnyOrder(VideoClip& clip, int largest, double mean) {
    std::vector<unsigned char> rgba(kWidth * kHeight * 4);
    for (const int frame : {0, 1, 2, 7, 3, 11, 10, 5, 5, 0, 9, 6}) {
        ASSERT_EQ(clip.ReadFrame(frame, rgba.data()), 1) << frame;
        const FrameError error = Measure(rgba, frame);
        EXPECT_LE(error.largest, largest) << "frame " << frame;
        EXPECT_LE(error.mean, mean) << "frame " << frame;
        EXPECT_NEAR(error.meanRed, 20 * frame, 4) << "frame " << frame;
    }
    EXPECT_EQ(clip.ReadFrame(kFrames, rgba.data()), 0);
    EXPECT_EQ(clip.ReadFrame(-1, rgba.data()), 0);
    EXPECT_EQ(clip.ReadFrame(0, nullptr), 0);
}

TEST(VideoClip, ReadsUncompressedFramesExactlyInAnyOrder) {
    TempDir dir;
    const std::string path = MakeClip(dir, "raw.avi", "-c:v rawvideo -pix_fmt bgr24");
    std::unique_ptr<VideoClip> clip(VideoClip::Open(path.c_str()));
    ASSERT_TRUE(clip);
    EXPECT_EQ((std::vector<float>{float(clip->Width()), float(clip->Height()),
                                  float(clip->NumFrames()), clip->FramesPerSecond()}),
              (std::vector<float>{kWidth, kHeight, kFrames, 10.0f}));
    ExpectFramesInAnyOrder(*clip, 0, 0);
}

TEST(VideoClip, SeeksToKeyFramesAndDecodesOnToTheFrameAskedFor) {
    TempDir dir;
    // Motion JPEG: every frame stands alone; MPEG-4 with a key frame every 4 frames: a frame
    // between key frames needs the ones before it.
    for (const std::string codec : {"-c:v mjpeg -q:v 1", "-c:v mpeg4 -q:v 1 -g 4"}) {
        const std::string path = MakeClip(dir, "lossy.avi", codec);
        std::unique_ptr<VideoClip> clip(VideoClip::Open(path.c_str()));
        ASSERT_TRUE(clip) << codec;
        EXPECT_EQ(clip->NumFrames(), kFrames) << codec;
        // Chroma is subsampled and quantised, which blurs the colour gradients a little;
        // frames are 20 steps of red apart.
        ExpectFramesInAnyOrder(*clip, 18, 3);
    }
}

TEST(VideoClip, CountsOpenClipsAndRefusesWhatIsNoClip) {
    TempDir dir;
    const std::string path = MakeClip(dir, "count.AVI", "-c:v rawvideo -pix_fmt bgr24");
    const int before = VideoClip_OpenCount();
    WriteFileBytes(dir.File("text.avi"), "RIFF but not really a clip at all");
    EXPECT_EQ(VideoClip::Open(dir.File("text.avi").c_str()), nullptr);
    EXPECT_EQ(VideoClip::Open(dir.File("absent.avi").c_str()), nullptr);
    EXPECT_EQ(VideoClip::Open(nullptr), nullptr);
    EXPECT_EQ(VideoClip_OpenCount(), before);
    {
        std::unique_ptr<VideoClip> first(VideoClip::Open(path.c_str()));
        ASSERT_TRUE(first);
        EXPECT_EQ(VideoClip_OpenCount(), before + 1);
        std::unique_ptr<VideoClip> second(VideoClip::Open(path.c_str()));
        EXPECT_EQ(VideoClip_OpenCount(), before + 2);
        first.reset();
        EXPECT_EQ(VideoClip_OpenCount(), before + 1);
        // The other clip keeps working after the first one closed.
        std::vector<unsigned char> rgba(kWidth * kHeight * 4);
        ASSERT_EQ(second->ReadFrame(4, rgba.data()), 1);
        EXPECT_EQ(Measure(rgba, 4).largest, 0);
    }
    EXPECT_EQ(VideoClip_OpenCount(), before);
}

}  // namespace
