// cmaterial: colours, amounts, maps, the viewport set-up and the material record.
#include "cmaterial.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "cio.h"
#include "ciofields.h"
#include "oglext.h"
#include "runtime/namefield.h"

namespace {

constexpr float kMaxShininess = 128.0f;
// Map paths: 512 bytes from the version that widened names, 256 before.
constexpr unsigned int kPathFieldSize = 512;
constexpr unsigned int kOldPathFieldSize = 256;
// The newest record layout, which Save writes.
constexpr unsigned long kNewestVersion = 16;

// ---- The record as it lies in the file ----

// One map sub-record; the defaults are those of fields an older record lacks.
struct MapRecord {
    char path[kPathFieldSize] = {};
    int startFrame = 0;
    float frameRate = 1.0f;
    int framesFlag = 0;
    int freezeFlag = 0;
    int keyFlag = 0;
    unsigned char key[3] = {0, 0, 0};
    int alphaFlag = 1;
};

struct MaterialRecord {
    char name[NAME_FIELD_SIZE] = {};
    ccolor ambient, diffuse, specular, emissive;
    int transColorFlag = 0;
    ccolor transColor{0.0f, 0.0f, 0.0f, 0.0f};
    int alphaFlag = 1;
    int oglfxFlag = 0;
    float shininess = 100.0f;
    int amounts[6] = {100, 100, 100, 0, 100, 0};
    int envMapType = 1;
    MapRecord maps[MAP_COUNT];
};

// A zero-padded text field of `size` bytes.
struct TextField {
    char* text;
    unsigned int size;
};

// The fields of a map sub-record of `version`, in file order, each handed to `field`.
template <class Field>
int ForEachMapField(MapRecord& m, unsigned long version, Field field) {
    const unsigned int pathSize =
        version >= NAME_FIELD_VERSION ? kPathFieldSize : kOldPathFieldSize;
    int ok = field(TextField{m.path, pathSize});
    if (version > 1)
        ok = ok && field(m.startFrame) && field(m.frameRate) && field(m.framesFlag) &&
             field(m.freezeFlag);
    if (version >= 10)
        ok = ok && field(m.keyFlag) && field(m.key[0]) && field(m.key[1]) && field(m.key[2]);
    if (version >= 12) ok = ok && field(m.alphaFlag);
    return ok;
}

// The fields of a material record of `version`, in file order: one list for both directions.
template <class Field>
int ForEachField(MaterialRecord& r, unsigned long version, Field field) {
    int ok = field(TextField{r.name, NameFieldSize(version)}) && field(r.ambient) &&
             field(r.diffuse) && field(r.specular) && field(r.emissive);
    if (version >= 3) ok = ok && field(r.transColorFlag) && field(r.transColor);
    if (version >= 12) ok = ok && field(r.alphaFlag) && field(r.oglfxFlag);
    ok = ok && field(r.shininess);
    for (int& amount : r.amounts) ok = ok && field(amount);
    if (version > 4) ok = ok && field(r.envMapType);
    for (MapRecord& map : r.maps) ok = ok && ForEachMapField(map, version, field);
    return ok;
}

struct ReadField {
    cio_load& in;
    int operator()(TextField f) const { return ReadName(in, f.text, f.size); }
    int operator()(ccolor& v) const { return ReadColor(in, v); }
    int operator()(int& v) const { return ReadInt32(in, v); }
    int operator()(float& v) const { return ReadFloat(in, v); }
    int operator()(unsigned char& v) const { return ReadUInt8(in, v); }
};

struct WriteField {
    cio_save& out;
    int operator()(TextField f) const { return WriteName(out, f.text, f.size); }
    int operator()(const ccolor& v) const { return WriteColor(out, v); }
    int operator()(int v) const { return WriteInt32(out, v); }
    int operator()(float v) const { return WriteFloat(out, v); }
    int operator()(unsigned char v) const { return WriteUInt8(out, v); }
};

// ---- Maps in and out of records ----

MapRecord MapRecordOf(const cimage& image) {
    MapRecord m;
    if (std::strcmp(image.GetPathNamePtr(), CIMAGE_EMPTY_PATH) != 0)
        std::snprintf(m.path, sizeof m.path, "%s", image.GetPathNamePtr());
    m.startFrame = image.GetStartFrame();
    m.frameRate = image.GetFrameRate();
    m.framesFlag = static_cast<int>(image.GetFramesFlag());
    m.freezeFlag = image.GetFreezeFlag();
    m.keyFlag = image.IsColorKeyEnabled();
    image.GetColorKey(m.key[0], m.key[1], m.key[2]);
    m.alphaFlag = image.IsAlphaEnabled();
    return m;
}

void ApplyMapSettings(const MapRecord& m, cimage& image) {
    image.SetStartFrame(m.startFrame);
    image.SetFrameRate(m.frameRate);
    image.SetFramesFlag(static_cast<unsigned int>(m.framesFlag));
    image.SetFreezeFlag(m.freezeFlag);
    image.SetColorKey(m.key[0], m.key[1], m.key[2]);
    image.EnableColorKey(m.keyFlag);
    image.EnableAlpha(m.alphaFlag);
}

// ---- OpenGL ----

using ActiveTextureFn = void (*)(GLenum);

ActiveTextureFn ActiveTexture() {
    return reinterpret_cast<ActiveTextureFn>(OGL_FindExtensionProc("glActiveTextureARB"));
}

// Selects texture unit `unit` when units can be selected; unit 0 is the only one otherwise.
void SelectUnit(int unit) {
    if (ActiveTextureFn select = ActiveTexture()) select(GL_TEXTURE0_ARB + unit);
}

// Texturing on with `id` bound, or off with texture 0 bound when `id` is 0.
void SetUnitTexture(int unit, unsigned int id) {
    SelectUnit(unit);
    if (id) {
        glEnable(GL_TEXTURE_2D);
    } else {
        glDisable(GL_TEXTURE_2D);
    }
    glBindTexture(GL_TEXTURE_2D, id);
}

void BlendWithoutDepthWrites() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
}

bool HasTwoUnits() {
    return OGL_Num_Tex_Units() >= 2 && ActiveTexture();
}

}  // namespace

// ---- Life ----

cmaterial::cmaterial() : cmaterial("Mat1") {}

cmaterial::cmaterial(char const* initialName) {
    SetDefaults();
    StoreName(name, initialName ? initialName : "Mat1");
}

cmaterial::cmaterial(const cmaterial& other) {
    SetDefaults();
    CopyFrom(other);
}

cmaterial& cmaterial::operator=(const cmaterial& other) {
    if (this != &other) CopyFrom(other);
    return *this;
}

cmaterial::~cmaterial() = default;

void cmaterial::Copy(cmaterial* other) {
    if (other && other != this) CopyFrom(*other);
}

void cmaterial::Delete() {
    delete this;
}

void cmaterial::SetDefaults() {
    std::memset(name, 0, sizeof name);
    StoreName(name, "Mat1");
    ambient = ccolor(0.5f, 0.5f, 0.5f, 1.0f);
    diffuse = ccolor(1.0f, 1.0f, 1.0f, 1.0f);
    specular = emissive = transColor = ccolor(0.0f, 0.0f, 0.0f, 0.0f);
    transColorFlag = 0;
    alphaFlag = 1;
    oglfxFlag = 0;
    shininess = 100.0f;
    diffuseAmount = opacityAmount = bumpAmount = refractionAmount = 100;
    reflectionAmount = emissiveAmount = 0;
    envMapType = 1;
}

void cmaterial::CopyFrom(const cmaterial& other) {
    std::memcpy(name, other.name, sizeof name);
    ambient = other.ambient;
    diffuse = other.diffuse;
    specular = other.specular;
    emissive = other.emissive;
    transColor = other.transColor;
    transColorFlag = other.transColorFlag;
    alphaFlag = other.alphaFlag;
    oglfxFlag = other.oglfxFlag;
    shininess = other.shininess;
    for (unsigned int slot = 0; slot < MAP_COUNT; ++slot) CopyImage(maps[slot], other.maps[slot]);
    diffuseAmount = other.diffuseAmount;
    opacityAmount = other.opacityAmount;
    bumpAmount = other.bumpAmount;
    reflectionAmount = other.reflectionAmount;
    refractionAmount = other.refractionAmount;
    emissiveAmount = other.emissiveAmount;
    envMapType = other.envMapType;
}

void cmaterial::Clear(int keepSettings) {
    for (cimage& map : maps) map.Clear();
    if (!keepSettings) SetDefaults();
}

void cmaterial::SetName(char const* newName) {
    StoreName(name, newName);
}

void cmaterial::GetName(char* buffer) const {
    CopyNameOut(name, buffer);
}

// ---- Settings ----

void cmaterial::SetTransColor(const ccolor& c) {
    transColor = c;
    maps[MAP_DIFFUSE].SetColorKey(c);
}

void cmaterial::SetShininess(float value) {
    const float clamped = std::clamp(value, 0.0f, kMaxShininess);
    if (clamped != shininess) shininess = clamped;
}

void cmaterial::SetDiffuseAmount(int amount) {
    diffuseAmount = std::clamp(amount, 0, 100);
}

void cmaterial::SetOpacityAmount(int amount) {
    opacityAmount = std::clamp(amount, 0, 100);
}

void cmaterial::SetBumpAmount(int amount) {
    bumpAmount = std::clamp(amount, 0, 100);
}

void cmaterial::SetReflectionAmount(int amount) {
    reflectionAmount = std::clamp(amount, 0, 100);
}

void cmaterial::SetRefractionAmount(int amount) {
    // Intended: refraction is the one amount allowed above 100.
    refractionAmount = std::clamp(amount, 0, 1000);
}

void cmaterial::SetEmissiveAmount(int amount) {
    emissiveAmount = std::clamp(amount, 0, 100);
}

void cmaterial::EnableAlpha(int enable) {
    alphaFlag = enable ? 1 : 0;
    maps[MAP_DIFFUSE].EnableAlpha(alphaFlag);
}

void cmaterial::EnableTransColor(int enable) {
    transColorFlag = enable ? 1 : 0;
    maps[MAP_DIFFUSE].EnableColorKey(transColorFlag);
}

// ---- Maps ----

int cmaterial::SetImage(const cimage& image, unsigned int slot) {
    if (slot >= MAP_COUNT) return 0;
    cimage& map = maps[slot];
    CopyImage(map, image);
    if (slot == MAP_DIFFUSE) {
        map.SetColorKey(transColor);
        map.EnableColorKey(transColorFlag);
        map.EnableAlpha(alphaFlag);
    } else if (slot == MAP_OPACITY) {
        map.MakeAlphaChannelOutOfRGB();
    }
    return 1;
}

cimage* cmaterial::GetImage(unsigned int slot) {
    return slot < MAP_COUNT ? &maps[slot] : nullptr;
}

void cmaterial::ClearImage(unsigned int slot) {
    if (slot < MAP_COUNT) maps[slot].Clear();
}

int cmaterial::IsValidImage(unsigned int slot) const {
    return slot < MAP_COUNT && !maps[slot].IsEmpty() ? 1 : 0;
}

int cmaterial::NumImages() const {
    // Intended: ten indices are counted although only six slots exist.
    int count = 0;
    for (unsigned int slot = 0; slot < 10; ++slot) count += IsValidImage(slot);
    return count;
}

int cmaterial::IsTransparent() const {
    if (opacityAmount != 100 || IsValidImage(MAP_OPACITY)) return 1;
    return (alphaFlag || transColorFlag) && IsValidImage(MAP_DIFFUSE) &&
                   maps[MAP_DIFFUSE].IsTransparent()
               ? 1
               : 0;
}

// ---- Viewport ----

void cmaterial::Render(int frame, int textures, int lighting) {
    glDisable(GL_BLEND);
    glDepthMask(GL_TRUE);
    if (lighting) {
        if (opacityAmount != 100) BlendWithoutDepthWrites();
        const float diffuseScale = diffuseAmount / 100.0f;
        const float emissiveScale = emissiveAmount / 100.0f;
        const float diffuseColor[4] = {diffuse.r * diffuseScale, diffuse.g * diffuseScale,
                                       diffuse.b * diffuseScale, opacityAmount / 100.0f};
        const float emission[4] = {emissive.r * emissiveScale, emissive.g * emissiveScale,
                                   emissive.b * emissiveScale, emissive.a * emissiveScale};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient);
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuseColor);
        glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, kMaxShininess - shininess);
        glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, emission);
    }
    if (textures) {
        BindTextures(frame);
    } else {
        if (HasTwoUnits()) SetUnitTexture(1, 0);
        SetUnitTexture(0, 0);
    }
}

void cmaterial::BindTextures(int frame) {
    cimage& diffuseMap = maps[MAP_DIFFUSE];
    const unsigned int diffuseID = IsValidImage(MAP_DIFFUSE) ? diffuseMap.GetID(frame) : 0;
    const bool opacityUnit =
        oglfxFlag && OGL_MulTex_Supported() && HasTwoUnits() && IsValidImage(MAP_OPACITY);
    if (opacityUnit) {
        SetUnitTexture(1, maps[MAP_OPACITY].GetID(frame));
    } else if (HasTwoUnits()) {
        SetUnitTexture(1, 0);
    }
    SetUnitTexture(0, diffuseID);
    if ((alphaFlag || transColorFlag) && diffuseID && diffuseMap.IsTransparent())
        BlendWithoutDepthWrites();
}

// ---- The record ----

int cmaterial::Save(cio_save& out) const {
    MaterialRecord r;
    std::memcpy(r.name, name, sizeof r.name);
    r.ambient = ambient;
    r.diffuse = diffuse;
    r.specular = specular;
    r.emissive = emissive;
    r.transColorFlag = transColorFlag;
    r.transColor = transColor;
    r.alphaFlag = alphaFlag;
    r.oglfxFlag = oglfxFlag;
    r.shininess = shininess;
    const int amounts[6] = {diffuseAmount,    opacityAmount,    bumpAmount,
                            reflectionAmount, refractionAmount, emissiveAmount};
    std::copy(amounts, amounts + 6, r.amounts);
    r.envMapType = envMapType;
    for (unsigned int slot = 0; slot < MAP_COUNT; ++slot) r.maps[slot] = MapRecordOf(maps[slot]);
    return ForEachField(r, kNewestVersion, WriteField{out});
}

int cmaterial::Load(cio_load& in, unsigned long version) {
    MaterialRecord r;
    if (!ForEachField(r, version, ReadField{in})) return 0;
    Clear(0);
    SetName(r.name);
    ambient = r.ambient;
    diffuse = r.diffuse;
    specular = r.specular;
    emissive = r.emissive;
    transColor = r.transColor;
    transColorFlag = r.transColorFlag ? 1 : 0;
    alphaFlag = r.alphaFlag ? 1 : 0;
    oglfxFlag = r.oglfxFlag ? 1 : 0;
    // Older files stored the OpenGL exponent rather than the shininess.
    SetShininess(version < 8 ? kMaxShininess - r.shininess : r.shininess);
    SetDiffuseAmount(r.amounts[0]);
    SetOpacityAmount(r.amounts[1]);
    SetBumpAmount(r.amounts[2]);
    SetReflectionAmount(r.amounts[3]);
    SetRefractionAmount(r.amounts[4]);
    SetEmissiveAmount(r.amounts[5]);
    envMapType = r.envMapType;
    for (unsigned int slot = 0; slot < MAP_COUNT; ++slot) {
        const MapRecord& m = r.maps[slot];
        if (!m.path[0]) continue;
        cimage image;
        if (image.Load(m.path)) {
            ApplyMapSettings(m, image);
            SetImage(image, slot);
        } else {
            // The reference survives the next save although the file is missing.
            maps[slot].SetPathName(r.maps[slot].path);
        }
    }
    return 1;
}
