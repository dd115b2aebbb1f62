// cimage: one picture, image file list or video clip held as 32-bit RGBA, with its alpha
// channel, colour key, frame selection over animation time and the OpenGL texture made from it.
//
// Pixels are width x height x 4 bytes, R, G, B, A, 8 bits each, the top row first (as the
// picture codecs deliver them). Texture uploads need a GL context: the texture window's (see
// texwindow.h) or, without one, the context current on the calling thread; with neither the
// pixels are kept and the texture is made when a texture name is first asked for.
#ifndef ORVANE_CIMAGE_H
#define ORVANE_CIMAGE_H

#include <memory>
#include <string>
#include <vector>

#include "ccolor.h"
#include "coreapi.h"

class VideoClip;

// The path an image without content holds.
#define CIMAGE_EMPTY_PATH "<empty>"

// Frames flag values: how frames run past the last one.
enum : unsigned int { FRAMES_LOOP = 0, FRAMES_ONCE = 1, FRAMES_PINGPONG = 2 };

// Flags of SetBits and ConvertTo32: 16-bit pixels are 5-6-5 (else 5-5-5 with the top bit
// unused).
enum : int { IMAGE_RGB565 = 0x1 };

class CORE_API cimage {
public:
    cimage();
    ~cimage();
    cimage(const cimage&) = delete;
    cimage& operator=(const cimage&) = delete;

    // Releases the pixels, the stored alpha, the texture and any open clip; the path becomes
    // "<empty>" and the frame settings (start, rate, frames flag, freeze) their defaults. The
    // alpha flag and the colour key stay.
    void Clear();
    // 1 when the image holds no pixels (a path kept for a missing file is still empty).
    int IsEmpty() const;
    // 1 when some pixel of the current frame has alpha below 255.
    int IsTransparent() const { return transparent; }

    // Loads a still picture, an image file list (".ifl") or a video clip (".avi"), searching
    // the stored path, then "./" + file name, then "<path_app>/Maps/" + file name. Returns 1,
    // or 0 with the image unchanged. The alpha flag and colour key in force apply to the new
    // pixels; the frame settings return to their defaults.
    int Load(char const* file);
    // Loads the image's own path again; 0 for an empty path.
    int Reload();

    // Replaces the image with caller pixels of `bitsPerPixel` 8 (indices into `palette`, 256
    // RGB triples), 16 (little-endian words, 5-5-5 or 5-6-5 by `flags`), 24 (RGB) or 32
    // (RGBA), top row first, no row padding; `name` becomes the path. 0 for another depth,
    // null bits, 8 bits without a palette or a size below 1, the image then unchanged.
    int SetBits(char* name, unsigned char* bits, unsigned char* palette, int width, int height,
                int bitsPerPixel, int flags);

    // Alpha and colour key. Changing one re-applies both to the pixels (UpdateAlphaColorKey).
    void EnableAlpha(int enable);
    int IsAlphaEnabled() const { return alphaFlag; }
    void SetColorKey(unsigned char r, unsigned char g, unsigned char b);
    // `rgb` as 0x00BBGGRR (red in the low byte).
    void SetColorKey(unsigned long rgb);
    // Components 0..1, each times 255 truncated and limited to 0..255.
    void SetColorKey(const ccolor& color);
    void GetColorKey(unsigned char& r, unsigned char& g, unsigned char& b) const;
    void EnableColorKey(int enable);
    int IsColorKeyEnabled() const { return colorKeyFlag; }
    // Every pixel's alpha becomes the stored alpha when the alpha flag is on, else 255; then 0
    // where the colour key is on and the pixel's RGB equals the key. With `rebind`, a texture
    // is uploaded again when any alpha changed.
    void UpdateAlphaColorKey(int rebind);
    // Copies the stored alpha back into the pixels.
    void RestoreAlpha();
    // Alpha becomes the mean of red, green and blue (white opaque, black clear); it is also
    // kept as the stored alpha.
    void MakeAlphaChannelOutOfRGB();
    // Red, green and blue become the alpha: a grey picture of the alpha channel.
    void MakeRGBOutOfAlphaChannel();

    // Path accessors. `buffer`s hold 512 bytes. The path is split at the last '\\' or '/':
    // GetPath gives the folder with its trailing separator, GetName the file name, GetTitle
    // the file name without its extension, GetExt the extension without the dot.
    void SetPathName(char* path);
    void GetPathName(char* buffer) const;
    char* GetPathNamePtr() { return pathName; }
    char const* GetPathNamePtr() const { return pathName; }
    void GetPath(char* buffer) const;
    void GetName(char* buffer) const;
    void GetTitle(char* buffer) const;
    void GetExt(char* buffer) const;

    // Frame selection: FRAMES_LOOP, FRAMES_ONCE or FRAMES_PINGPONG; the frame at time 0;
    // image frames per animation tick; freeze shows the start frame always.
    void SetFramesFlag(unsigned int flag) { framesFlag = flag; }
    unsigned int GetFramesFlag() const { return framesFlag; }
    void SetStartFrame(int frame) { startFrame = frame; }
    int GetStartFrame() const { return startFrame; }
    void SetFrameRate(float rate) { frameRate = rate; }
    float GetFrameRate() const { return frameRate; }
    void SetFreezeFlag(int freeze) { freezeFlag = freeze; }
    int GetFreezeFlag() const { return freezeFlag; }
    int GetNumFrames() const { return numFrames; }
    // The frame shown at animation time `time` (ticks), 0 .. GetNumFrames() - 1.
    int CalcFrameIndex(int time) const;

    // Pixels and texture.
    void GetSize(int* width, int* height) const;
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }
    // The pixels of the frame at `time` (ticks) or of frame `frame`, decoded first for clips
    // and lists; null when the image is empty or the frame cannot be read.
    unsigned char* GetBits(int time);
    unsigned char* GetBitsAt(int frame);
    // The pixels of the frame in memory.
    unsigned char* GetBitsPtr() { return bits.get(); }
    // The OpenGL texture name of the frame at `time` or of frame `frame` (0 when there is
    // none and none can be made).
    unsigned int GetID(int time);
    unsigned int GetIDAt(int frame);

    // Uploads the pixels as the image's texture, replacing the previous one (see the
    // texture settings below). Without a GL context only the transparent flag is updated.
    void Bind();

private:
    friend CORE_API void CopyImage(cimage& dst, const cimage& src);

    // A pixel buffer handed over by the picture codecs goes back through them; others were
    // made with new[].
    struct PixelRelease {
        bool fromCodec;  // value-initialised (false) by the owning pointer
        void operator()(unsigned char* buffer) const;
    };
    using Pixels = std::unique_ptr<unsigned char[], PixelRelease>;

    int LoadKind(char const* file, std::string const& found);
    int LoadPicture(std::string const& found);
    int LoadIFL(std::string const& found);
    int LoadAVI(std::string const& found);
    int LoadIFLFrame(int frame);
    int LoadAVIFrame(int frame);
    int ReadPicture(std::string const& found);
    int AllocatePixels(int w, int h);
    void PixelsChanged();
    int StoreAlphaBits();
    void ApplyAlphaSettings();
    void UpdateTransparentFlag();
    void ReleaseTexture();
    void Swap(cimage& other);

    char pathName[512];
    int width = 0, height = 0;
    int numFrames = 0;
    Pixels bits;
    unsigned int textureID = 0;
    VideoClip* clip = nullptr;
    std::string clipFile;                 // video clip: the file it was opened on
    std::vector<std::string> listFrames;  // image file list: the resolved file of each frame
    int loadedFrame = -1;                 // frame in `bits` for clips and lists
    int startFrame = 0;
    float frameRate = 1.0f;
    unsigned int framesFlag = FRAMES_LOOP;
    int freezeFlag = 0;
    int transparent = 0;
    Pixels alphaBits;  // null: every pixel opaque
    int alphaFlag = 1;
    unsigned char colorKey[3] = {0, 0, 0};
    int colorKeyFlag = 0;
};

// A deep copy of `src` into `dst`: pixels, stored alpha, path, frame and key settings; a clip
// is opened again on its file, and the copy gets a texture of its own.
CORE_API void CopyImage(cimage& dst, const cimage& src);

// Writes a picture file (format by extension) through the picture codecs: `bitsPerPixel` 24
// for RGB triples, else RGBA; `quality` for JPEG, where the host is asked for it. 0 for an
// empty name or null bits, else the codec's result.
CORE_API int SaveImage(char const* file, unsigned char* bits, unsigned char* alpha, int width,
                       int height, int bitsPerPixel, int quality);

// Exchanges the first and third byte of every pixel in place, stepping bitsPerPixel / 8 bytes;
// depths below 24 have no such pair and are left alone.
CORE_API void ISwapRedBlue(void* bits, int width, int height, int bitsPerPixel);

// Converts `width` x `height` pixels of `bitsPerPixel` 8, 16, 24 or 32 (see cimage::SetBits)
// into RGBA in `rgba` (width x height x 4 bytes). `alpha`, when not null, gives every pixel's
// alpha; otherwise 32-bit pixels keep theirs and other depths get 255. 1, or 0 for an
// unsupported depth, null input or 8 bits without a palette.
CORE_API int ConvertTo32(unsigned char* rgba, unsigned char const* bits, unsigned char const* alpha,
                         unsigned char const* palette, int width, int height, int bitsPerPixel,
                         int flags);

// Library-wide texture settings. The maximum size accepts 64, 128, 256 or 512 (default 256);
// the texel filter 1 (nearest) or 2 (linear) (default 1); the mipmap filter 0 (none), 1
// (nearest level) or 2 (linear between levels) (default 0). Other values are ignored.
CORE_API void Tex_SetMaxSize(int size);
CORE_API int Tex_GetMaxSize();
CORE_API void Tex_SetTexelFilter(int filter);
CORE_API int Tex_GetTexelFilter();
CORE_API void Tex_SetMipMapFilter(int filter);
CORE_API int Tex_GetMipMapFilter();

#endif
