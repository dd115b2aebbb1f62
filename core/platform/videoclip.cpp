// Video clips through FFmpeg: the file is demuxed and decoded on demand, one frame at a time,
// seeking only when the frame asked for is not the next one in the stream.
#include "platform/videoclip.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <cmath>

namespace {

// A clip larger than this on a side is refused rather than decoded into memory.
constexpr int kMaxClipSide = 8192;

int g_openClips = 0;
int g_savedLogLevel = AV_LOG_INFO;

// The shared state the clips count on: FFmpeg's log level. Decoders report every damaged
// packet on stderr, which a host's console should not fill up with; the level the process
// had is given back when the last clip closes.
class SharedStateToken {
public:
    SharedStateToken() {
        if (g_openClips++ == 0) {
            g_savedLogLevel = av_log_get_level();
            av_log_set_level(AV_LOG_FATAL);
        }
    }
    ~SharedStateToken() {
        if (--g_openClips == 0) av_log_set_level(g_savedLogLevel);
    }
    SharedStateToken(const SharedStateToken&) = delete;
    SharedStateToken& operator=(const SharedStateToken&) = delete;
};

}  // namespace

struct VideoClip::Decoder {
    SharedStateToken token;
    AVFormatContext* format = nullptr;
    AVCodecContext* codec = nullptr;
    SwsContext* scaler = nullptr;
    AVFrame* frame = nullptr;
    AVPacket* packet = nullptr;
    int stream = -1;
    int numFrames = 0;
    AVRational frameRate{0, 1};
    int64_t startTime = 0;
    // The index of the frame the decoder delivers next when read on; -1 after a drain or a
    // failure, when the next read has to seek.
    int64_t nextIndex = -1;

    ~Decoder() {
        sws_freeContext(scaler);
        av_frame_free(&frame);
        av_packet_free(&packet);
        avcodec_free_context(&codec);
        avformat_close_input(&format);
    }

    bool Open(char const* path);
    bool OpenCodec();
    void CountFrames();
    int64_t IndexOf(int64_t timestamp) const;
    int64_t TimestampOf(int64_t index) const;
    bool SeekTo(int64_t index);
    int ReceiveFrameAtOrAfter(int64_t index);
    bool Convert(unsigned char* rgba);
    int Read(int64_t index, unsigned char* rgba);
};

bool VideoClip::Decoder::Open(char const* path) {
    if (avformat_open_input(&format, path, nullptr, nullptr) < 0) return false;
    if (avformat_find_stream_info(format, nullptr) < 0) return false;
    stream = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream < 0 || !OpenCodec()) return false;
    AVStream const* video = format->streams[stream];
    frameRate = video->avg_frame_rate.num > 0 ? video->avg_frame_rate : video->r_frame_rate;
    if (frameRate.num <= 0 || frameRate.den <= 0) return false;
    startTime = video->start_time == AV_NOPTS_VALUE ? 0 : video->start_time;
    CountFrames();
    frame = av_frame_alloc();
    packet = av_packet_alloc();
    return numFrames > 0 && frame && packet;
}

bool VideoClip::Decoder::OpenCodec() {
    AVCodecParameters const* parameters = format->streams[stream]->codecpar;
    AVCodec const* decoder = avcodec_find_decoder(parameters->codec_id);
    if (!decoder) return false;
    codec = avcodec_alloc_context3(decoder);
    if (!codec || avcodec_parameters_to_context(codec, parameters) < 0) return false;
    if (avcodec_open2(codec, decoder, nullptr) < 0) return false;
    return codec->width > 0 && codec->height > 0 && codec->width <= kMaxClipSide &&
           codec->height <= kMaxClipSide;
}

// AVI headers state the frame count; other containers may only know their duration.
void VideoClip::Decoder::CountFrames() {
    AVStream const* video = format->streams[stream];
    int64_t count = video->nb_frames;
    if (count <= 0 && video->duration != AV_NOPTS_VALUE)
        count = av_rescale_q(video->duration, video->time_base, av_inv_q(frameRate));
    if (count <= 0 && format->duration != AV_NOPTS_VALUE)
        count = av_rescale_q(format->duration, AVRational{1, AV_TIME_BASE}, av_inv_q(frameRate));
    numFrames = count > 0 && count < (1 << 30) ? static_cast<int>(count) : 0;
}

int64_t VideoClip::Decoder::IndexOf(int64_t timestamp) const {
    AVRational const timeBase = format->streams[stream]->time_base;
    const double seconds = static_cast<double>(timestamp - startTime) * av_q2d(timeBase);
    return std::llround(seconds * av_q2d(frameRate));
}

int64_t VideoClip::Decoder::TimestampOf(int64_t index) const {
    return startTime + av_rescale_q(index, av_inv_q(frameRate), format->streams[stream]->time_base);
}

bool VideoClip::Decoder::SeekTo(int64_t index) {
    if (av_seek_frame(format, stream, TimestampOf(index), AVSEEK_FLAG_BACKWARD) < 0 &&
        av_seek_frame(format, stream, startTime, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY) < 0)
        return false;
    avcodec_flush_buffers(codec);
    return true;
}

// Decodes on until a frame at or past `index` comes out: 1 with it in `frame`, 0 at the end
// of the stream or on an error.
int VideoClip::Decoder::ReceiveFrameAtOrAfter(int64_t index) {
    bool draining = false;
    for (;;) {
        const int received = avcodec_receive_frame(codec, frame);
        if (received == 0) {
            const int64_t at = IndexOf(frame->best_effort_timestamp);
            if (frame->best_effort_timestamp == AV_NOPTS_VALUE || at >= index) {
                nextIndex = at + 1;
                return 1;
            }
            continue;
        }
        if (received != AVERROR(EAGAIN) || draining) return 0;
        const int read = av_read_frame(format, packet);
        if (read < 0) {
            draining = true;
            avcodec_send_packet(codec, nullptr);
            continue;
        }
        if (packet->stream_index == stream) avcodec_send_packet(codec, packet);
        av_packet_unref(packet);
    }
}

bool VideoClip::Decoder::Convert(unsigned char* rgba) {
    if (frame->width != codec->width || frame->height != codec->height) return false;
    scaler = sws_getCachedContext(
        scaler, frame->width, frame->height, static_cast<AVPixelFormat>(frame->format),
        codec->width, codec->height, AV_PIX_FMT_RGBA, SWS_POINT, nullptr, nullptr, nullptr);
    if (!scaler) return false;
    uint8_t* planes[4] = {rgba, nullptr, nullptr, nullptr};
    int strides[4] = {codec->width * 4, 0, 0, 0};
    return sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, planes, strides) ==
           frame->height;
}

int VideoClip::Decoder::Read(int64_t index, unsigned char* rgba) {
    if (index != nextIndex && !SeekTo(index)) return 0;
    nextIndex = -1;
    const int got = ReceiveFrameAtOrAfter(index);
    const bool ok = got && Convert(rgba);
    av_frame_unref(frame);
    if (!ok) nextIndex = -1;
    return ok ? 1 : 0;
}

VideoClip* VideoClip::Open(char const* path) {
    if (!path || !*path) return nullptr;
    auto decoder = std::make_unique<Decoder>();
    if (!decoder->Open(path)) return nullptr;
    return new VideoClip(std::move(decoder));
}

VideoClip::VideoClip(std::unique_ptr<Decoder> decoder) : decoder_(std::move(decoder)) {}

VideoClip::~VideoClip() = default;

int VideoClip::Width() const {
    return decoder_->codec->width;
}

int VideoClip::Height() const {
    return decoder_->codec->height;
}

int VideoClip::NumFrames() const {
    return decoder_->numFrames;
}

float VideoClip::FramesPerSecond() const {
    return static_cast<float>(av_q2d(decoder_->frameRate));
}

int VideoClip::ReadFrame(int index, unsigned char* rgba) {
    if (!rgba || index < 0 || index >= decoder_->numFrames) return 0;
    return decoder_->Read(index, rgba);
}

int VideoClip_OpenCount() {
    return g_openClips;
}
