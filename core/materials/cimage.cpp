// cimage: pictures, image file lists and video clips as RGBA pixels and GL textures.
#include "cimage.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <new>
#include <utility>

#include "coreinterface.h"
#include "pictolib.h"
#include "platform/filesize.h"
#include "platform/videoclip.h"
#include "runtime/check.h"
#include "viewport/texcontextscope.h"

namespace {

// ---- Library-wide texture settings ----

struct TextureSettings {
    int maxSize = 256;
    int texelFilter = 1;
    int mipMapFilter = 0;
};

TextureSettings& Settings() {
    static TextureSettings settings;
    return settings;
}

// The upload caps textures here whatever the stored maximum is: that value is only offered to
// the host's settings.
constexpr int kTextureCap = 512;

// ---- Paths ----

constexpr size_t kPathBytes = 512;

void CopyPath(char* dst, char const* src) {
    std::snprintf(dst, kPathBytes, "%s", src);
}

// The offset just after the last '\\' or '/' (0 without a separator).
size_t NameStart(std::string const& path) {
    const size_t separator = path.find_last_of("\\/");
    return separator == std::string::npos ? 0 : separator + 1;
}

// Only regular files count: a folder or a device that opens is no picture.
bool Readable(std::string const& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    const bool regular = RegularFileSize(file) >= 0;
    std::fclose(file);
    return regular;
}

// The file name a search tries in other folders: what follows the last backslash, else what
// follows the last slash, else the whole path.
std::string SearchName(std::string const& path) {
    size_t separator = path.rfind('\\');
    if (separator == std::string::npos) separator = path.rfind('/');
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

// The stored path if it opens, else "./" + its file name, else the application's "/Maps/"
// folder + its file name; "" when none opens.
std::string FindImageFile(char const* path) {
    const std::string stored(path);
    if (Readable(stored)) return stored;
    const std::string name = SearchName(stored);
    for (std::string const& candidate : {"./" + name, std::string(GetAppPath()) + "/Maps/" + name})
        if (Readable(candidate)) return candidate;
    return std::string();
}

bool ExtensionIs(char const* path, char const* ext) {
    char const* dot = std::strrchr(path, '.');
    if (!dot) return false;
    for (int i = 0; i < 3; ++i)
        if (std::tolower(static_cast<unsigned char>(dot[1 + i])) != ext[i]) return false;
    return true;
}

bool IsAbsolute(std::string const& path) {
    return (!path.empty() && (path[0] == '/' || path[0] == '\\')) ||
           (path.size() > 1 && path[1] == ':');
}

std::string Trimmed(std::string const& line) {
    const size_t first = line.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::string();
    return line.substr(first, line.find_last_not_of(" \t\r\n") - first + 1);
}

// The picture files an image file list names, one per line, relative names taken from the
// list's folder; blank lines and lines starting with ';' or '#' are comments.
std::vector<std::string> ReadImageList(std::string const& listFile) {
    std::vector<std::string> frames;
    std::ifstream in(listFile);
    const std::string folder = listFile.substr(0, NameStart(listFile));
    std::string line;
    while (std::getline(in, line)) {
        const std::string name = Trimmed(line);
        if (name.empty() || name[0] == ';' || name[0] == '#') continue;
        frames.push_back(IsAbsolute(name) ? name : folder + name);
    }
    return frames;
}

// ---- Frames ----

// The remainder with the sign of the divisor, so indices stay in 0 .. n - 1 for negative
// times and start frames.
int FloorMod(int a, int n) {
    const int r = a % n;
    return r < 0 ? r + n : r;
}

int FloorDiv(int a, int n) {
    return (a - FloorMod(a, n)) / n;
}

int FrameByFlag(int f, int n, unsigned int flag) {
    switch (flag) {
        case FRAMES_ONCE:
            return f < n ? FloorMod(f, n) : n - 1;
        case FRAMES_PINGPONG:
            return FloorDiv(f, n) % 2 == 0 ? FloorMod(f, n) : n - 1 - FloorMod(f, n);
        default:
            return FloorMod(f, n);
    }
}

// ---- Pixels ----

// The lines allocation failures are reported under, one per report text.
constexpr int kBitsLine = 349;
constexpr int kAlphaBitsLine = 424;
constexpr int kImgLine = 1007;

// A buffer of `bytes` or null, with the allocation report `text` when memory runs out.
unsigned char* Allocate(size_t bytes, char const* text, int line) {
    auto* buffer = new (std::nothrow) unsigned char[bytes];
    if (!buffer) MyAssertFailedLine(text, CORE_SOURCE_NAME, line);
    return buffer;
}

size_t PixelCount(int w, int h) {
    return static_cast<size_t>(w) * static_cast<size_t>(h);
}

// An 8-bit value from its top `bits` bits, the high bits repeated into the low ones.
unsigned char Expand(unsigned int value, int bits) {
    return static_cast<unsigned char>((value << (8 - bits)) | (value >> (2 * bits - 8)));
}

// One pixel of `bitsPerPixel` into RGBA.
void ConvertPixel(unsigned char* out, unsigned char const* in, unsigned char const* palette,
                  int bitsPerPixel, int flags) {
    switch (bitsPerPixel) {
        case 8:
            std::memcpy(out, palette + 3 * in[0], 3);
            out[3] = 255;
            break;
        case 16: {
            const unsigned int word = in[0] | in[1] << 8;
            const bool wideGreen = flags & IMAGE_RGB565;
            const int greenBits = wideGreen ? 6 : 5;
            out[0] = Expand((word >> (5 + greenBits)) & 0x1F, 5);
            out[1] = Expand((word >> 5) & ((1u << greenBits) - 1), greenBits);
            out[2] = Expand(word & 0x1F, 5);
            out[3] = 255;
            break;
        }
        case 24:
            std::memcpy(out, in, 3);
            out[3] = 255;
            break;
        default:
            std::memcpy(out, in, 4);
    }
}

// Whether texture side `side` needs no rounding: a power of two from 1 to 1024.
bool IsTextureSide(int side) {
    return side >= 1 && side <= 1024 && (side & (side - 1)) == 0;
}

int RoundUpToPowerOfTwo(int side) {
    int power = 1;
    while (power < side && power < (1 << 30)) power <<= 1;
    return power;
}

// The filters of the settings' row and column, and whether the upload builds mipmaps.
struct TextureFilters {
    GLint mag, min;
    bool mipmaps;
};

TextureFilters FiltersOf(TextureSettings const& s) {
    const bool linear = s.texelFilter == 2;
    const GLint mag = linear ? GL_LINEAR : GL_NEAREST;
    switch (s.mipMapFilter) {
        case 1:
            return {mag, linear ? GL_NEAREST_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_NEAREST, true};
        case 2:
            return {mag, linear ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST, true};
        default:
            return {mag, mag, false};
    }
}

void UploadTexture(unsigned char const* pixels, int w, int h) {
    const TextureFilters filters = FiltersOf(Settings());
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filters.mag);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filters.min);
    if (filters.mipmaps)
        gluBuild2DMipmaps(GL_TEXTURE_2D, GL_RGBA, w, h, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    else
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, w, h, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}

}  // namespace

// ---- Life ----

cimage::cimage() {
    CopyPath(pathName, CIMAGE_EMPTY_PATH);
}

cimage::~cimage() {
    Clear();
}

void cimage::Clear() {
    ReleaseTexture();
    bits.reset();
    alphaBits.reset();
    delete clip;
    clip = nullptr;
    clipFile.clear();
    listFrames.clear();
    loadedFrame = -1;
    width = height = numFrames = 0;
    transparent = 0;
    CopyPath(pathName, CIMAGE_EMPTY_PATH);
    startFrame = 0;
    frameRate = 1.0f;
    framesFlag = FRAMES_LOOP;
    freezeFlag = 0;
}

int cimage::IsEmpty() const {
    return bits ? 0 : 1;
}

void cimage::Swap(cimage& other) {
    std::swap(pathName, other.pathName);
    std::swap(width, other.width);
    std::swap(height, other.height);
    std::swap(numFrames, other.numFrames);
    std::swap(bits, other.bits);
    std::swap(textureID, other.textureID);
    std::swap(clip, other.clip);
    std::swap(clipFile, other.clipFile);
    std::swap(listFrames, other.listFrames);
    std::swap(loadedFrame, other.loadedFrame);
    std::swap(startFrame, other.startFrame);
    std::swap(frameRate, other.frameRate);
    std::swap(framesFlag, other.framesFlag);
    std::swap(freezeFlag, other.freezeFlag);
    std::swap(transparent, other.transparent);
    std::swap(alphaBits, other.alphaBits);
    std::swap(alphaFlag, other.alphaFlag);
    std::swap(colorKey, other.colorKey);
    std::swap(colorKeyFlag, other.colorKeyFlag);
}

// ---- Loading ----

int cimage::Load(char const* file) {
    if (!file || !*file) return 0;
    const std::string found = FindImageFile(file);
    if (found.empty()) return 0;
    // The new content is built beside the old, which stays whole when anything fails.
    cimage fresh;
    fresh.alphaFlag = alphaFlag;
    std::memcpy(fresh.colorKey, colorKey, sizeof colorKey);
    fresh.colorKeyFlag = colorKeyFlag;
    if (!fresh.LoadKind(file, found)) return 0;
    Swap(fresh);
    return 1;
}

int cimage::Reload() {
    if (std::strcmp(pathName, CIMAGE_EMPTY_PATH) == 0) return 0;
    const std::string path(pathName);
    return Load(path.c_str());
}

int cimage::LoadKind(char const* file, std::string const& found) {
    CopyPath(pathName, file);
    const int loaded = ExtensionIs(file, "avi")   ? LoadAVI(found)
                       : ExtensionIs(file, "ifl") ? LoadIFL(found)
                                                  : LoadPicture(found);
    if (loaded) Bind();
    return loaded;
}

void cimage::PixelRelease::operator()(unsigned char* buffer) const {
    if (fromCodec)
        PictoLib_Free(buffer, nullptr);
    else
        delete[] buffer;
}

int cimage::AllocatePixels(int w, int h) {
    if (!bits || w != width || h != height) {
        bits = Pixels(Allocate(PixelCount(w, h) * 4, "bits", kBitsLine));
        if (!bits) return 0;
    }
    width = w;
    height = h;
    return 1;
}

// Decodes the picture file `found` into the pixels. The codec's buffers are taken over as
// they are: its pixels already carry the alpha it hands out separately.
int cimage::ReadPicture(std::string const& found) {
    unsigned char* pictureBits = nullptr;
    unsigned char* pictureAlpha = nullptr;
    int w = 0, h = 0;
    if (!PictoLib_Load(found.c_str(), &pictureBits, &pictureAlpha, &w, &h)) return 0;
    bits = Pixels(pictureBits, PixelRelease{true});
    alphaBits = Pixels(pictureAlpha, PixelRelease{true});
    width = w;
    height = h;
    ReleaseTexture();
    ApplyAlphaSettings();
    return 1;
}

int cimage::LoadPicture(std::string const& found) {
    numFrames = 1;
    return ReadPicture(found);
}

int cimage::LoadIFL(std::string const& found) {
    listFrames = ReadImageList(found);
    numFrames = static_cast<int>(listFrames.size());
    return numFrames > 0 && LoadIFLFrame(0);
}

int cimage::LoadIFLFrame(int frame) {
    const std::string found = FindImageFile(listFrames[static_cast<size_t>(frame)].c_str());
    if (found.empty() || !ReadPicture(found)) return 0;
    loadedFrame = frame;
    return 1;
}

int cimage::LoadAVI(std::string const& found) {
    clip = VideoClip::Open(found.c_str());
    if (!clip) return 0;
    clipFile = found;
    numFrames = clip->NumFrames();
    return numFrames > 0 && LoadAVIFrame(0);
}

int cimage::LoadAVIFrame(int frame) {
    if (!AllocatePixels(clip->Width(), clip->Height()) || !clip->ReadFrame(frame, bits.get()))
        return 0;
    loadedFrame = frame;
    PixelsChanged();
    return 1;
}

// New pixels: their alpha is kept, the alpha and key settings applied, and a texture of the
// old pixels dropped (the next texture request makes the new one).
void cimage::PixelsChanged() {
    ReleaseTexture();
    if (StoreAlphaBits()) ApplyAlphaSettings();
}

// Fresh pixels hold the stored alpha already: only a switched-off alpha or a key changes them.
void cimage::ApplyAlphaSettings() {
    if (!alphaFlag || colorKeyFlag)
        UpdateAlphaColorKey(0);
    else
        UpdateTransparentFlag();
}

// An opaque picture keeps no alpha.
int cimage::StoreAlphaBits() {
    const size_t count = PixelCount(width, height);
    size_t i = 0;
    while (i < count && bits[4 * i + 3] == 255) ++i;
    if (i == count) {
        alphaBits.reset();
        return 1;
    }
    alphaBits = Pixels(Allocate(count, "alphabits", kAlphaBitsLine));
    if (!alphaBits) return 0;
    for (i = 0; i < count; ++i) alphaBits[i] = bits[4 * i + 3];
    return 1;
}

int cimage::SetBits(char* name, unsigned char* newBits, unsigned char* palette, int w, int h,
                    int bitsPerPixel, int flags) {
    const bool depthKnown =
        bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32 || bitsPerPixel == 8;
    if (!newBits || !depthKnown || (bitsPerPixel == 8 && !palette) || w < 1 || h < 1) return 0;
    Pixels converted(Allocate(PixelCount(w, h) * 4, "bits", kBitsLine));
    if (!converted ||
        !ConvertTo32(converted.get(), newBits, nullptr, palette, w, h, bitsPerPixel, flags))
        return 0;
    Clear();
    if (name) CopyPath(pathName, name);
    bits = std::move(converted);
    width = w;
    height = h;
    numFrames = 1;
    PixelsChanged();
    Bind();
    return 1;
}

// ---- Frames ----

int cimage::CalcFrameIndex(int time) const {
    const int n = numFrames;
    if (n <= 0) return 0;
    if (freezeFlag) return FloorMod(startFrame, n);
    // Intended: a rate of n or more image frames per tick always shows frame 0.
    if (static_cast<int>(frameRate) >= n) return 0;
    const int f = static_cast<int>(static_cast<float>(time) * frameRate);
    return (FloorMod(startFrame, n) + FrameByFlag(f, n, framesFlag)) % n;
}

unsigned char* cimage::GetBits(int time) {
    return GetBitsAt(CalcFrameIndex(time));
}

unsigned char* cimage::GetBitsAt(int frame) {
    if (numFrames <= 0) return nullptr;
    if (clip || !listFrames.empty()) {
        const int index = FloorMod(frame, numFrames);
        if (index != loadedFrame && !(clip ? LoadAVIFrame(index) : LoadIFLFrame(index)))
            return nullptr;
    }
    return bits.get();
}

unsigned int cimage::GetID(int time) {
    return GetIDAt(CalcFrameIndex(time));
}

unsigned int cimage::GetIDAt(int frame) {
    if (!GetBitsAt(frame)) return 0;
    if (textureID == 0) Bind();
    return textureID;
}

void cimage::GetSize(int* w, int* h) const {
    if (w) *w = width;
    if (h) *h = height;
}

// ---- Alpha and colour key ----

void cimage::EnableAlpha(int enable) {
    const int flag = enable ? 1 : 0;
    if (flag == alphaFlag) return;
    alphaFlag = flag;
    UpdateAlphaColorKey(1);
}

void cimage::EnableColorKey(int enable) {
    const int flag = enable ? 1 : 0;
    if (flag == colorKeyFlag) return;
    colorKeyFlag = flag;
    UpdateAlphaColorKey(1);
}

void cimage::SetColorKey(unsigned char r, unsigned char g, unsigned char b) {
    if (colorKey[0] == r && colorKey[1] == g && colorKey[2] == b) return;
    colorKey[0] = r;
    colorKey[1] = g;
    colorKey[2] = b;
    UpdateAlphaColorKey(1);
}

void cimage::SetColorKey(unsigned long rgb) {
    SetColorKey(static_cast<unsigned char>(rgb & 0xFF), static_cast<unsigned char>(rgb >> 8 & 0xFF),
                static_cast<unsigned char>(rgb >> 16 & 0xFF));
}

void cimage::SetColorKey(const ccolor& color) {
    const auto byte = [](int value) {
        return static_cast<unsigned char>(std::clamp(value, 0, 255));
    };
    SetColorKey(byte(color.Redi()), byte(color.Greeni()), byte(color.Bluei()));
}

void cimage::GetColorKey(unsigned char& r, unsigned char& g, unsigned char& b) const {
    r = colorKey[0];
    g = colorKey[1];
    b = colorKey[2];
}

void cimage::UpdateAlphaColorKey(int rebind) {
    if (!bits) return;
    bool changed = false;
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count; ++i) {
        unsigned char* pixel = &bits[4 * i];
        unsigned char alpha = alphaFlag && alphaBits ? alphaBits[i] : 255;
        if (colorKeyFlag && std::memcmp(pixel, colorKey, 3) == 0) alpha = 0;
        changed |= pixel[3] != alpha;
        pixel[3] = alpha;
    }
    UpdateTransparentFlag();
    if (changed && rebind) Bind();
}

void cimage::RestoreAlpha() {
    if (!bits) return;
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count; ++i) bits[4 * i + 3] = alphaBits ? alphaBits[i] : 255;
    if (textureID) Bind();
    UpdateTransparentFlag();
}

void cimage::MakeAlphaChannelOutOfRGB() {
    if (!bits) return;
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count; ++i) {
        unsigned char* pixel = &bits[4 * i];
        pixel[3] = static_cast<unsigned char>((pixel[0] + pixel[1] + pixel[2]) / 3);
    }
    // The made alpha is what later key changes start from.
    StoreAlphaBits();
    if (textureID) Bind();
    UpdateTransparentFlag();
}

void cimage::MakeRGBOutOfAlphaChannel() {
    if (!bits) return;
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count; ++i) std::memset(&bits[4 * i], bits[4 * i + 3], 3);
    if (textureID) Bind();
}

void cimage::UpdateTransparentFlag() {
    transparent = 0;
    if (!bits) return;
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count && !transparent; ++i) transparent = bits[4 * i + 3] < 255;
}

// ---- Paths ----

void cimage::SetPathName(char* path) {
    CopyPath(pathName, path ? path : CIMAGE_EMPTY_PATH);
}

void cimage::GetPathName(char* buffer) const {
    if (buffer) CopyPath(buffer, pathName);
}

void cimage::GetPath(char* buffer) const {
    const std::string path(pathName);
    if (buffer) CopyPath(buffer, path.substr(0, NameStart(path)).c_str());
}

void cimage::GetName(char* buffer) const {
    const std::string path(pathName);
    if (buffer) CopyPath(buffer, path.substr(NameStart(path)).c_str());
}

void cimage::GetTitle(char* buffer) const {
    const std::string path(pathName);
    const std::string name = path.substr(NameStart(path));
    if (buffer) CopyPath(buffer, name.substr(0, name.rfind('.')).c_str());
}

void cimage::GetExt(char* buffer) const {
    const std::string path(pathName);
    const std::string name = path.substr(NameStart(path));
    const size_t dot = name.rfind('.');
    if (buffer) CopyPath(buffer, dot == std::string::npos ? "" : name.substr(dot + 1).c_str());
}

// ---- Texture ----

void cimage::ReleaseTexture() {
    if (!textureID) return;
    if (TexContextAvailable()) {
        TexContextScope scope;
        glDeleteTextures(1, &textureID);
    }
    textureID = 0;
}

void cimage::Bind() {
    UpdateTransparentFlag();
    if (!bits || !TexContextAvailable()) return;
    TexContextScope scope;
    int w = width, h = height;
    if (!IsTextureSide(w) || !IsTextureSide(h)) {
        w = RoundUpToPowerOfTwo(w);
        h = RoundUpToPowerOfTwo(h);
    }
    w = std::min(w, kTextureCap);
    h = std::min(h, kTextureCap);
    std::unique_ptr<unsigned char[]> scaled;
    if (w != width || h != height) {
        scaled.reset(Allocate(PixelCount(w, h) * 4, "img", kImgLine));
        if (!scaled) return;
        gluScaleImage(GL_RGBA, width, height, GL_UNSIGNED_BYTE, bits.get(), w, h, GL_UNSIGNED_BYTE,
                      scaled.get());
    }
    ReleaseTexture();
    glGenTextures(1, &textureID);
    glBindTexture(GL_TEXTURE_2D, textureID);
    UploadTexture(scaled ? scaled.get() : bits.get(), w, h);
}

// ---- Free functions ----

void CopyImage(cimage& dst, const cimage& src) {
    if (&dst == &src) return;
    cimage copy;
    std::memcpy(copy.pathName, src.pathName, sizeof copy.pathName);
    copy.numFrames = src.numFrames;
    copy.listFrames = src.listFrames;
    copy.loadedFrame = src.loadedFrame;
    copy.startFrame = src.startFrame;
    copy.frameRate = src.frameRate;
    copy.framesFlag = src.framesFlag;
    copy.freezeFlag = src.freezeFlag;
    copy.alphaFlag = src.alphaFlag;
    std::memcpy(copy.colorKey, src.colorKey, sizeof copy.colorKey);
    copy.colorKeyFlag = src.colorKeyFlag;
    copy.transparent = src.transparent;
    const size_t count = PixelCount(src.width, src.height);
    if (src.bits && copy.AllocatePixels(src.width, src.height))
        std::memcpy(copy.bits.get(), src.bits.get(), count * 4);
    if (src.alphaBits) {
        copy.alphaBits = cimage::Pixels(Allocate(count, "alphabits", kAlphaBitsLine));
        if (copy.alphaBits) std::memcpy(copy.alphaBits.get(), src.alphaBits.get(), count);
    }
    if (src.clip) {
        copy.clip = VideoClip::Open(src.clipFile.c_str());
        copy.clipFile = src.clipFile;
        // A clip that no longer opens leaves its current frame as a still picture.
        if (!copy.clip) copy.numFrames = copy.bits ? 1 : 0;
    }
    copy.Bind();
    dst.Swap(copy);
}

int SaveImage(char const* file, unsigned char* bits, unsigned char* alpha, int width, int height,
              int bitsPerPixel, int quality) {
    if (!file || !*file || !bits) return 0;
    return PictoLib_Save(file, bits, alpha, width, height, bitsPerPixel, quality, 1);
}

void ISwapRedBlue(void* bits, int width, int height, int bitsPerPixel) {
    if (!bits || bitsPerPixel < 24 || width < 1 || height < 1) return;
    const size_t step = static_cast<size_t>(bitsPerPixel / 8);
    auto* pixel = static_cast<unsigned char*>(bits);
    for (size_t i = 0; i < PixelCount(width, height); ++i, pixel += step)
        std::swap(pixel[0], pixel[2]);
}

int ConvertTo32(unsigned char* rgba, unsigned char const* bits, unsigned char const* alpha,
                unsigned char const* palette, int width, int height, int bitsPerPixel, int flags) {
    const bool depthKnown =
        bitsPerPixel == 8 || bitsPerPixel == 16 || bitsPerPixel == 24 || bitsPerPixel == 32;
    if (!rgba || !bits || !depthKnown || (bitsPerPixel == 8 && !palette)) return 0;
    const size_t step = static_cast<size_t>(bitsPerPixel / 8);
    const size_t count = PixelCount(width, height);
    for (size_t i = 0; i < count; ++i) {
        ConvertPixel(rgba + 4 * i, bits + step * i, palette, bitsPerPixel, flags);
        if (alpha) rgba[4 * i + 3] = alpha[i];
    }
    return 1;
}

void Tex_SetMaxSize(int size) {
    if (size == 64 || size == 128 || size == 256 || size == 512) Settings().maxSize = size;
}

int Tex_GetMaxSize() {
    return Settings().maxSize;
}

void Tex_SetTexelFilter(int filter) {
    if (filter == 1 || filter == 2) Settings().texelFilter = filter;
}

int Tex_GetTexelFilter() {
    return Settings().texelFilter;
}

void Tex_SetMipMapFilter(int filter) {
    if (filter >= 0 && filter <= 2) Settings().mipMapFilter = filter;
}

int Tex_GetMipMapFilter() {
    return Settings().mipMapFilter;
}
