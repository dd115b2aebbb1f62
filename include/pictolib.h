// PictoLib: the picture codecs images are read and written through (PNG, JPEG, BMP, TGA, GIF,
// PSD, HDR). Plain C-style functions over byte buffers the library allocates.
//
// Pixel layout, everywhere in this interface: `width` x `height` pixels, the top row first,
// each row left to right, no padding between rows.
#ifndef ORVANE_PICTOLIB_H
#define ORVANE_PICTOLIB_H

#include "coreapi.h"

// Reads the picture file `path`; the format is recognised by the file's content, whatever its
// extension says. Returns 1 on success, 0 when the file cannot be opened, is of no known
// format, is larger than 16384 pixels on a side or 2^25 pixels in all, or is corrupt or
// truncated (outputs then untouched).
//
// On success `*bits` receives width x height x 4 bytes RGBA, 8 bits per channel, whatever the
// file's depth (1- to 16-bit grey, palettes, 16-bit channels and HDR are converted; HDR is
// clamped to 0..1 without tone mapping). When some pixel is not fully opaque (an alpha
// channel, a transparent palette entry or colour), `*alpha` receives width x height bytes, one
// alpha per pixel, and the fourth byte of each pixel in `*bits` holds the same value; otherwise
// `*alpha` is null and every fourth byte is 255. Both buffers belong to the caller, who
// releases them with PictoLib_Free. `alpha` may be null when the caller wants no alpha buffer.
CORE_API int PictoLib_Load(char const* path, unsigned char** bits, unsigned char** alpha,
                           int* width, int* height);

// Writes a picture to `path`; the format follows the extension, compared case-insensitively:
// ".png", ".jpg" or ".jpeg", ".bmp", ".tga". Returns 1 on success, 0 for another extension,
// null `bits`, a size below 1 or above 16384 on a side, a failed write, or a JPEG quality
// dialog the user cancelled.
//
// `bits` holds width x height pixels in the load layout: RGB triples when `bitsPerPixel` is
// 24, RGBA quadruples for any other value (their fourth byte is not written). `alpha`, when
// not null, is width x height bytes that become the file's alpha channel (PNG, BMP and TGA;
// JPEG has none); without it the file has colour only.
//
// JPEG quality (1 worst .. 100 best): with `askQuality` not 0, the host's quality dialog
// (I_JPGQualityDlg) is asked when the file is a JPEG, and an answer below 1 cancels the save;
// otherwise `quality` is used, and a value outside 1..100 means 75. Other formats ignore both.
CORE_API int PictoLib_Save(char const* path, unsigned char const* bits, unsigned char const* alpha,
                           int width, int height, int bitsPerPixel, int quality, int askQuality);

// Releases the buffers PictoLib_Load returned; either may be null.
CORE_API void PictoLib_Free(unsigned char* bits, unsigned char* alpha);

#endif
