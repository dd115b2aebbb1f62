// cmaterial: a surface description kept in the scene's material list: four colours, a colour
// key, shininess, six strength amounts, switches and six image maps. It sets up OpenGL for
// the faces that use it and is saved as one record.
#ifndef ORVANE_CMATERIAL_H
#define ORVANE_CMATERIAL_H

#include "ccolor.h"
#include "cimage.h"
#include "coreapi.h"

class cio_load;
class cio_save;

// Map slots of SetImage, GetImage, ClearImage and IsValidImage.
enum : unsigned int {
    MAP_DIFFUSE = 0,
    MAP_OPACITY = 1,
    MAP_BUMP = 2,
    MAP_REFLECTION = 3,
    MAP_REFRACTION = 4,
    MAP_EMISSIVE = 5,
    MAP_COUNT = 6
};

class CORE_API cmaterial {
public:
    // A material named "Mat1" with the default settings; the scene makes such a name unique
    // when it is added.
    cmaterial();
    // A material named `name` (at most 63 characters kept; null gives "Mat1").
    explicit cmaterial(char const* name);
    // Copies every field and every map.
    cmaterial(const cmaterial& other);
    cmaterial& operator=(const cmaterial& other);
    virtual ~cmaterial();

    // Copies every field and every map of `other` (null is ignored).
    void Copy(cmaterial* other);
    // Destroys the object through its virtual destructor: the way scene code disposes of it.
    void Delete();
    // Empties the six maps; with `keepSettings` 0 also restores every default, name included.
    void Clear(int keepSettings);

    // Stores `name` in the 64-byte name field: up to 63 characters are copied whole, a longer
    // name is cut to its first 63 characters. A null name is ignored.
    void SetName(char const* name);
    // The stored name (zero-terminated, at most 63 characters).
    char* GetName() { return name; }
    char const* GetName() const { return name; }
    // Copies the stored name with its terminator into `buffer` (64 bytes); null is ignored.
    void GetName(char* buffer) const;

    // Colours, each as a ccolor, four floats (0..1) or four ints (0..255: set divides by 255,
    // get multiplies by 255 and truncates). No clamping.
    void SetAmbient(const ccolor& c) { ambient = c; }
    void SetAmbient(float r, float g, float b, float a) { ambient = ccolor(r, g, b, a); }
    void SetAmbient(int r, int g, int b, int a) { ambient = ccolor(r, g, b, a); }
    ccolor GetAmbient() const { return ambient; }
    void GetAmbient(float& r, float& g, float& b, float& a) const { Split(ambient, r, g, b, a); }
    void GetAmbient(int& r, int& g, int& b, int& a) const { Split(ambient, r, g, b, a); }

    void SetDiffuse(const ccolor& c) { diffuse = c; }
    void SetDiffuse(float r, float g, float b, float a) { diffuse = ccolor(r, g, b, a); }
    void SetDiffuse(int r, int g, int b, int a) { diffuse = ccolor(r, g, b, a); }
    ccolor GetDiffuse() const { return diffuse; }
    void GetDiffuse(float& r, float& g, float& b, float& a) const { Split(diffuse, r, g, b, a); }
    void GetDiffuse(int& r, int& g, int& b, int& a) const { Split(diffuse, r, g, b, a); }

    void SetSpecular(const ccolor& c) { specular = c; }
    void SetSpecular(float r, float g, float b, float a) { specular = ccolor(r, g, b, a); }
    void SetSpecular(int r, int g, int b, int a) { specular = ccolor(r, g, b, a); }
    ccolor GetSpecular() const { return specular; }
    void GetSpecular(float& r, float& g, float& b, float& a) const { Split(specular, r, g, b, a); }
    void GetSpecular(int& r, int& g, int& b, int& a) const { Split(specular, r, g, b, a); }

    void SetEmissive(const ccolor& c) { emissive = c; }
    void SetEmissive(float r, float g, float b, float a) { emissive = ccolor(r, g, b, a); }
    void SetEmissive(int r, int g, int b, int a) { emissive = ccolor(r, g, b, a); }
    ccolor GetEmissive() const { return emissive; }
    void GetEmissive(float& r, float& g, float& b, float& a) const { Split(emissive, r, g, b, a); }
    void GetEmissive(int& r, int& g, int& b, int& a) const { Split(emissive, r, g, b, a); }

    // The transparent colour is also the diffuse map's colour key.
    void SetTransColor(const ccolor& c);
    void SetTransColor(float r, float g, float b, float a) { SetTransColor(ccolor(r, g, b, a)); }
    void SetTransColor(int r, int g, int b, int a) { SetTransColor(ccolor(r, g, b, a)); }
    ccolor GetTransColor() const { return transColor; }
    void GetTransColor(float& r, float& g, float& b, float& a) const {
        Split(transColor, r, g, b, a);
    }
    void GetTransColor(int& r, int& g, int& b, int& a) const { Split(transColor, r, g, b, a); }

    // Shininess 0..128 (values outside are clamped); the OpenGL exponent is 128 - shininess.
    void SetShininess(float value);
    void SetShininess(int value) { SetShininess(static_cast<float>(value)); }
    float GetShininess() const { return shininess; }
    // The shininess truncated to an int.
    int GetShininessi() const { return static_cast<int>(shininess); }

    // Amounts in percent, clamped to 0..100; the refraction amount alone to 0..1000.
    void SetDiffuseAmount(int amount);
    int GetDiffuseAmount() const { return diffuseAmount; }
    void SetOpacityAmount(int amount);
    int GetOpacityAmount() const { return opacityAmount; }
    void SetBumpAmount(int amount);
    int GetBumpAmount() const { return bumpAmount; }
    void SetReflectionAmount(int amount);
    int GetReflectionAmount() const { return reflectionAmount; }
    void SetRefractionAmount(int amount);
    int GetRefractionAmount() const { return refractionAmount; }
    void SetEmissiveAmount(int amount);
    int GetEmissiveAmount() const { return emissiveAmount; }

    // Switches. The alpha and transparent-colour switches are passed on to the diffuse map.
    void EnableAlpha(int enable);
    int IsAlphaEnabled() const { return alphaFlag; }
    void EnableTransColor(int enable);
    int IsTransColorEnabled() const { return transColorFlag; }
    void EnableOGLfx(int enable) { oglfxFlag = enable ? 1 : 0; }
    int IsOGLfxEnabled() const { return oglfxFlag; }
    // The reflection mapping the raytracer uses: 0 none, 1 spherical (the default), 2
    // cylindrical. Stored and saved as given; the viewport ignores it.
    void SetEnvMapType(int type) { envMapType = type; }
    int GetEnvMapType() const { return envMapType; }

    // Maps (MAP_DIFFUSE ... MAP_EMISSIVE). SetImage copies `image` into the slot: the diffuse
    // map takes the material's colour key, key switch and alpha switch; the opacity map's alpha
    // is made from its colours. 0 for a slot outside 0..5.
    int SetImage(const cimage& image, unsigned int slot);
    // The slot's image, or null for a slot outside 0..5.
    cimage* GetImage(unsigned int slot);
    void ClearImage(unsigned int slot);
    // 1 when the slot holds pixels.
    int IsValidImage(unsigned int slot) const;
    // The number of valid slots.
    int NumImages() const;

    // 1 when the material lets what lies behind show through: an opacity amount below 100 or
    // an opacity map, or a transparent diffuse map that alpha or the colour key is on for.
    int IsTransparent() const;

    // Sets up OpenGL for drawing faces of this material at animation time `frame` (ticks):
    // blending and depth writes, with `lighting` the material colours (front and back), with
    // `textures` the diffuse map on unit 0 and, for OpenGL effects, the opacity map on unit 1.
    void Render(int frame, int textures, int lighting);

    // The material record: the newest layout on Save, any version from 1 on Load. Load
    // returns 0 when the record is cut short; image files that cannot be found keep their
    // path in the slot.
    int Save(cio_save& out) const;
    int Load(cio_load& in, unsigned long version);

private:
    static void Split(const ccolor& c, float& r, float& g, float& b, float& a) {
        r = c.r, g = c.g, b = c.b, a = c.a;
    }
    static void Split(const ccolor& c, int& r, int& g, int& b, int& a) {
        r = c.Redi(), g = c.Greeni(), b = c.Bluei(), a = c.Alphai();
    }
    void SetDefaults();
    void CopyFrom(const cmaterial& other);
    void BindTextures(int frame);

    char name[64];
    ccolor ambient, diffuse, specular, emissive;
    ccolor transColor;
    int transColorFlag = 0;
    int alphaFlag = 1;
    int oglfxFlag = 0;
    float shininess = 100.0f;
    cimage maps[MAP_COUNT];
    int diffuseAmount = 100;
    int opacityAmount = 100;
    int bumpAmount = 100;
    int reflectionAmount = 0;
    int refractionAmount = 100;
    int emissiveAmount = 0;
    int envMapType = 1;
};

#endif
