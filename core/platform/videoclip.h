// Internal: video clips decoded through FFmpeg, one frame at a time.
#ifndef ORVANE_CORE_PLATFORM_VIDEOCLIP_H
#define ORVANE_CORE_PLATFORM_VIDEOCLIP_H

#include <memory>

#include "coreapi.h"

// Exported for the library's tests only; no public header declares it.
class CORE_API VideoClip {
public:
    // Opens a clip ("avi" files, through FFmpeg); null when the file cannot be opened or
    // holds no video stream. The first open initialises the shared state, the last
    // close releases it (a counted initialisation, like AVIFileInit/AVIFileExit).
    static VideoClip* Open(char const* path);
    ~VideoClip();
    VideoClip(const VideoClip&) = delete;
    VideoClip& operator=(const VideoClip&) = delete;

    int Width() const;
    int Height() const;
    int NumFrames() const;
    float FramesPerSecond() const;
    // Decodes frame `index` (0 .. NumFrames() - 1) into `rgba`: Width() x Height() x 4
    // bytes, the same layout and row order as PictoLib_Load's bits. 1 on success.
    int ReadFrame(int index, unsigned char* rgba);

    struct Decoder;

private:
    explicit VideoClip(std::unique_ptr<Decoder> decoder);
    std::unique_ptr<Decoder> decoder_;
};

// The number of clips open now (the counted initialisation), for tests.
CORE_API int VideoClip_OpenCount();

#endif
