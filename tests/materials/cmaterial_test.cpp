#include "cmaterial.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "cio.h"
#include "materials/materialsupport.h"
#include "oglext.h"
#include "support/materialrecord.h"
#include "support/testsupport.h"

TEST(MaterialName, KeepsAtMost63CharactersAndIgnoresNull) {
    cmaterial fallback;
    EXPECT_STREQ(fallback.GetName(), "Mat1");
    cmaterial unnamed(nullptr);
    EXPECT_STREQ(unnamed.GetName(), "Mat1");

    const std::string seventy(70, 'm');
    cmaterial material(seventy.c_str());
    EXPECT_EQ(std::string(material.GetName()), seventy.substr(0, 63));

    material.SetName("Chrome");
    material.SetName(nullptr);
    char buffer[64];
    std::memset(buffer, 'x', sizeof buffer);
    material.GetName(buffer);
    EXPECT_STREQ(buffer, "Chrome") << "the copy ends at the terminator, no stale characters";
    EXPECT_EQ(buffer[7], '\0') << "the whole zero-padded field is copied";
    material.GetName(nullptr);
}

namespace {

using Color4 = std::array<float, 4>;

Color4 Of(const ccolor& c) {
    return {c.r, c.g, c.b, c.a};
}

cmaterial LoadedFrom(const std::string& bytes, unsigned long version, int* result = nullptr) {
    RecordStream stream(bytes);
    cmaterial material;
    const int loaded = material.Load(stream.in, version);
    if (result) *result = loaded;
    return material;
}

Color4 MaterialColor(GLenum face, GLenum name) {
    Color4 c{};
    glGetMaterialfv(face, name, c.data());
    return c;
}

}  // namespace

// The five colours, shininess, amounts, environment map type and switches, in that order.
std::vector<float> SettingsOf(const cmaterial& m) {
    std::vector<float> out;
    for (const ccolor& c :
         {m.GetAmbient(), m.GetDiffuse(), m.GetSpecular(), m.GetEmissive(), m.GetTransColor()})
        out.insert(out.end(), {c.r, c.g, c.b, c.a});
    for (int i :
         {m.GetDiffuseAmount(), m.GetOpacityAmount(), m.GetBumpAmount(), m.GetReflectionAmount(),
          m.GetRefractionAmount(), m.GetEmissiveAmount(), m.GetEnvMapType(),
          m.IsTransColorEnabled(), m.IsAlphaEnabled(), m.IsOGLfxEnabled()})
        out.push_back(static_cast<float>(i));
    out.push_back(m.GetShininess());
    return out;
}

TEST(MaterialSettings, DefaultsColourFormsAndClamps) {
    cmaterial m;
    const std::vector<float> defaults = {0.5f, 0.5f, 0.5f, 1, 1, 1, 1, 1, 0,  0,   0,
                                         0,    0,    0,    0, 0, 0, 0, 0, 0,  100, 100,
                                         100,  0,    100,  0, 1, 0, 1, 0, 100};
    EXPECT_EQ(SettingsOf(m), defaults);

    m.SetSpecular(51, 102, 255, 0);
    EXPECT_EQ(Of(m.GetSpecular()), (Color4{0.2f, 0.4f, 1.0f, 0.0f}));
    m.SetEmissive(0.999f, 0.5f, -0.5f, 2.0f);
    int r, g, b, a;
    m.GetEmissive(r, g, b, a);
    EXPECT_EQ((std::vector<int>{r, g, b, a}), (std::vector<int>{254, 127, -127, 510}));
    float fr, fg, fb, fa;
    m.GetAmbient(fr, fg, fb, fa);
    EXPECT_EQ((Color4{fr, fg, fb, fa}), (Color4{0.5f, 0.5f, 0.5f, 1}));

    for (const auto& row :
         {std::array<float, 3>{200, 128, 128}, {-3, 0, 0}, {12.75f, 12.75f, 12}}) {
        m.SetShininess(row[0]);
        EXPECT_EQ(m.GetShininess(), row[1]) << row[0];
        EXPECT_EQ(m.GetShininessi(), row[2]) << row[0];
    }
    m.SetRefractionAmount(500);
    m.SetReflectionAmount(500);
    m.SetEmissiveAmount(-4);
    m.SetOpacityAmount(101);
    EXPECT_EQ((std::vector<int>{m.GetRefractionAmount(), m.GetReflectionAmount(),
                                m.GetEmissiveAmount(), m.GetOpacityAmount()}),
              (std::vector<int>{500, 100, 0, 100}));
    m.SetRefractionAmount(1001);
    EXPECT_EQ(m.GetRefractionAmount(), 1000);

    cmaterial copy(m);
    m.Clear(0);
    EXPECT_EQ(copy.GetRefractionAmount(), 1000);
    EXPECT_EQ(SettingsOf(m), defaults);
    EXPECT_STREQ(m.GetName(), "Mat1");
}

TEST(MaterialMaps, SlotsHandOnSettingsAndDecideTransparency) {
    cmaterial m("Glass");
    cimage red, grey;
    SolidImage(red, {255, 0, 0, 255});
    SolidImage(grey, {90, 120, 150, 255});
    m.SetTransColor(255, 0, 0, 255);
    EXPECT_EQ(m.IsTransparent(), 0);
    EXPECT_EQ(m.SetImage(red, MAP_DIFFUSE), 1);
    cimage* diffuse = m.GetImage(MAP_DIFFUSE);
    unsigned char kr, kg, kb;
    diffuse->GetColorKey(kr, kg, kb);
    EXPECT_EQ((std::vector<int>{kr, kg, kb}), (std::vector<int>{255, 0, 0}));
    EXPECT_EQ(diffuse->IsColorKeyEnabled(), 0);
    EXPECT_EQ(m.IsTransparent(), 0);
    m.EnableTransColor(1);
    EXPECT_EQ(diffuse->IsColorKeyEnabled(), 1);
    EXPECT_EQ(m.IsTransparent(), 1) << "every pixel matches the key";
    m.SetTransColor(0.0f, 1.0f, 0.0f, 1.0f);
    EXPECT_EQ(m.IsTransparent(), 0);
    m.EnableAlpha(0);
    EXPECT_EQ(diffuse->IsAlphaEnabled(), 0);

    EXPECT_EQ(m.SetImage(grey, MAP_OPACITY), 1);
    EXPECT_EQ(PixelAt(*m.GetImage(MAP_OPACITY), 1, 1)[3], 120) << "alpha from the colours";
    EXPECT_EQ(PixelAt(grey, 1, 1)[3], 255) << "the slot holds a copy";
    EXPECT_EQ(m.IsTransparent(), 1);
    m.ClearImage(MAP_OPACITY);
    EXPECT_EQ(m.IsTransparent(), 0);
    m.SetOpacityAmount(99);
    EXPECT_EQ(m.IsTransparent(), 1);

    EXPECT_EQ(m.SetImage(grey, MAP_BUMP), 1);
    EXPECT_EQ(m.NumImages(), 2);
    EXPECT_EQ(m.GetImage(6), nullptr);
    EXPECT_EQ(m.SetImage(grey, 6), 0);
    EXPECT_EQ(m.IsValidImage(9), 0);

    cmaterial copy;
    copy = m;
    m.Clear(1);
    EXPECT_EQ(m.NumImages(), 0);
    EXPECT_EQ(m.GetOpacityAmount(), 99) << "Clear(1) keeps the settings";
    EXPECT_EQ(copy.NumImages(), 2);
    EXPECT_STREQ(copy.GetName(), "Glass");
    cmaterial other;
    other.Copy(&copy);
    EXPECT_EQ(other.IsValidImage(MAP_BUMP), 1);
    EXPECT_EQ(PixelAt(*other.GetImage(MAP_BUMP), 0, 0), (std::array<int, 4>{90, 120, 150, 255}));
}

TEST(MaterialRecord, NewestVersionIsWrittenByteForByteAndMissingFilesKeepTheirPath) {
    TempDir dir;
    ASSERT_TRUE(SolidPicture(dir.File("wood.png"), "#ff0000", 2, 2));
    cmaterial m("Wood");
    m.SetAmbient(0.1f, 0.2f, 0.3f, 0.4f);
    m.SetDiffuse(0.5f, 0.6f, 0.7f, 0.8f);
    m.SetSpecular(0.9f, 1.0f, 0.25f, 0.5f);
    m.SetEmissive(0.125f, 0.375f, 0.625f, 0.875f);
    m.SetTransColor(1.0f, 0.0f, 0.0f, 1.0f);
    m.EnableTransColor(1);
    m.EnableOGLfx(1);
    m.SetShininess(42.5f);
    m.SetDiffuseAmount(90);
    m.SetOpacityAmount(80);
    m.SetBumpAmount(70);
    m.SetReflectionAmount(60);
    m.SetRefractionAmount(750);
    m.SetEmissiveAmount(40);
    m.SetEnvMapType(2);
    cimage wood;
    ASSERT_EQ(wood.Load(dir.File("wood.png").c_str()), 1);
    wood.SetStartFrame(3);
    wood.SetFrameRate(0.5f);
    wood.SetFramesFlag(FRAMES_PINGPONG);
    wood.SetFreezeFlag(1);
    m.SetImage(wood, MAP_DIFFUSE);
    m.GetImage(MAP_REFLECTION)->SetPathName(const_cast<char*>("C:\\gone\\sky.jpg"));

    MaterialRecordBytes expected{"Wood",
                                 {0.1f, 0.2f, 0.3f, 0.4f},
                                 {0.5f, 0.6f, 0.7f, 0.8f},
                                 {0.9f, 1.0f, 0.25f, 0.5f},
                                 {0.125f, 0.375f, 0.625f, 0.875f},
                                 {1, 0, 0, 1},
                                 1,
                                 1,
                                 1,
                                 42.5f,
                                 {90, 80, 70, 60, 750, 40},
                                 2,
                                 {}};
    expected.maps[MAP_DIFFUSE] = {dir.File("wood.png"), 3, 0.5f, 2, 1, 1, {255, 0, 0}, 1};
    expected.maps[MAP_REFLECTION].path = "C:\\gone\\sky.jpg";
    const std::string bytes = Saved([&m](cio_save& out) { EXPECT_EQ(m.Save(out), 1); });
    EXPECT_EQ(bytes, expected.Bytes(16));

    int result = 0;
    cmaterial loaded = LoadedFrom(bytes, 16, &result);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(loaded.IsValidImage(MAP_DIFFUSE), 1);
    EXPECT_EQ(loaded.GetImage(MAP_DIFFUSE)->GetFramesFlag(), FRAMES_PINGPONG);
    EXPECT_EQ(loaded.GetImage(MAP_DIFFUSE)->IsTransparent(), 1) << "keyed by the material";
    EXPECT_EQ(loaded.IsValidImage(MAP_REFLECTION), 0);
    EXPECT_STREQ(loaded.GetImage(MAP_REFLECTION)->GetPathNamePtr(), "C:\\gone\\sky.jpg");
    EXPECT_EQ(Saved([&loaded](cio_save& out) { loaded.Save(out); }), bytes);

    for (size_t cut : {size_t{0}, size_t{63}, size_t{200}, bytes.size() - 1}) {
        LoadedFrom(bytes.substr(0, cut), 16, &result);
        EXPECT_EQ(result, 0) << "record cut to " << cut << " bytes";
    }
}

TEST(MaterialRecord, OlderVersionsLoadWithDefaultsForWhatTheyLack) {
    MaterialRecordBytes record;
    record.name = "AnOldMaterialWithANameOf34Letters";
    record.transColorFlag = 1;
    record.transColor[1] = 1.0f;
    record.alphaFlag = 0;
    record.oglfxFlag = 1;
    record.shininess = 100.0f;
    const std::int32_t amounts[6] = {10, 20, 30, 40, 900, 50};
    std::copy(amounts, amounts + 6, record.amounts);
    record.envMapType = 3;
    record.maps[MAP_BUMP] = {"/missing/bump.png", 2, 3.0f, 1, 1, 1, {1, 2, 3}, 0};
    for (std::uint32_t version = 1; version <= 16; ++version) {
        SCOPED_TRACE("version " + std::to_string(version));
        int result = 0;
        cmaterial m = LoadedFrom(record.Bytes(version), version, &result);
        ASSERT_EQ(result, 1);
        EXPECT_EQ(std::string(m.GetName()), record.name.substr(0, version >= 13 ? 63 : 31));
        EXPECT_EQ(m.IsTransColorEnabled(), version >= 3 ? 1 : 0);
        EXPECT_EQ(m.GetTransColor().g, version >= 3 ? 1.0f : 0.0f);
        EXPECT_EQ(m.IsAlphaEnabled(), version >= 12 ? 0 : 1);
        EXPECT_EQ(m.IsOGLfxEnabled(), version >= 12 ? 1 : 0);
        EXPECT_EQ(m.GetShininess(), version >= 8 ? 100.0f : 28.0f);
        EXPECT_EQ(m.GetRefractionAmount(), 900);
        EXPECT_EQ(m.GetEmissiveAmount(), 50);
        EXPECT_EQ(m.GetEnvMapType(), version > 4 ? 3 : 1);
        EXPECT_STREQ(m.GetImage(MAP_BUMP)->GetPathNamePtr(), "/missing/bump.png");
        EXPECT_EQ(m.NumImages(), 0);
    }
}

TEST(MaterialRecord, MapSubRecordSettingsApplyToLoadedImages) {
    TempDir dir;
    ASSERT_TRUE(SolidPicture(dir.File("rust.png"), "#010203", 2, 2));
    MaterialRecordBytes record;
    record.maps[MAP_EMISSIVE] = {dir.File("rust.png"), 2, 3.0f, 1, 1, 1, {1, 2, 3}, 0};
    for (std::uint32_t version : {1u, 9u, 10u, 12u}) {
        SCOPED_TRACE("version " + std::to_string(version));
        cmaterial m = LoadedFrom(record.Bytes(version), version);
        cimage* image = m.GetImage(MAP_EMISSIVE);
        ASSERT_EQ(m.IsValidImage(MAP_EMISSIVE), 1);
        EXPECT_EQ(image->GetStartFrame(), version > 1 ? 2 : 0);
        EXPECT_EQ(image->GetFrameRate(), version > 1 ? 3.0f : 1.0f);
        EXPECT_EQ(image->GetFreezeFlag(), version > 1 ? 1 : 0);
        EXPECT_EQ(image->IsColorKeyEnabled(), version >= 10 ? 1 : 0);
        EXPECT_EQ(image->IsAlphaEnabled(), version >= 12 ? 0 : 1);
        EXPECT_EQ(PixelAt(*image, 0, 0)[3], version >= 10 ? 0 : 255);
    }
}

using MaterialRender = GLTest;

TEST_F(MaterialRender, SetsColoursBlendingDepthWritesAndTextureUnits) {
    ASSERT_EQ(OGL_Init(), 1);
    cmaterial m;
    m.SetAmbient(0.1f, 0.2f, 0.3f, 1.0f);
    m.SetDiffuse(0.8f, 0.6f, 0.4f, 1.0f);
    m.SetSpecular(0.5f, 0.5f, 0.5f, 1.0f);
    m.SetEmissive(1.0f, 0.5f, 0.0f, 1.0f);
    m.SetDiffuseAmount(50);
    m.SetEmissiveAmount(50);
    m.SetShininess(100.0f);
    glEnable(GL_BLEND);
    glDepthMask(GL_FALSE);
    m.Render(0, 0, 1);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    GLboolean depthWrites = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrites);
    EXPECT_EQ(depthWrites, GL_TRUE);
    for (GLenum face : {GL_FRONT, GL_BACK}) {
        EXPECT_EQ(MaterialColor(face, GL_AMBIENT), (Color4{0.1f, 0.2f, 0.3f, 1.0f}));
        EXPECT_EQ(MaterialColor(face, GL_DIFFUSE), (Color4{0.4f, 0.3f, 0.2f, 1.0f}));
        EXPECT_EQ(MaterialColor(face, GL_SPECULAR), (Color4{0.5f, 0.5f, 0.5f, 1.0f}));
        EXPECT_EQ(MaterialColor(face, GL_EMISSION), (Color4{0.5f, 0.25f, 0.0f, 0.5f}));
        EXPECT_EQ(MaterialColor(face, GL_SHININESS)[0], 28.0f);
    }
    m.SetOpacityAmount(25);
    m.Render(0, 0, 1);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrites);
    EXPECT_EQ(depthWrites, GL_FALSE);
    EXPECT_EQ(MaterialColor(GL_FRONT, GL_DIFFUSE)[3], 0.25f);
    m.Render(0, 0, 0);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE) << "without lighting the amount is not looked at";

    ASSERT_GE(OGL_Num_Tex_Units(), 2);
    ASSERT_EQ(OGL_MulTex_Supported(), 1);
    auto activeTexture =
        reinterpret_cast<void (*)(GLenum)>(CoreGLContext_GetProcAddress("glActiveTexture"));
    ASSERT_NE(activeTexture, nullptr);
    const auto unitState = [&](int unit) {
        activeTexture(GL_TEXTURE0 + unit);
        GLint bound = -1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        const bool enabled = glIsEnabled(GL_TEXTURE_2D) == GL_TRUE;
        activeTexture(GL_TEXTURE0);
        return std::make_pair(enabled, bound);
    };
    cimage picture;
    SolidImage(picture, {200, 100, 50, 255});
    m.SetImage(picture, MAP_DIFFUSE);
    m.SetImage(picture, MAP_OPACITY);
    const auto diffuseID = static_cast<GLint>(m.GetImage(MAP_DIFFUSE)->GetID(0));
    const auto opacityID = static_cast<GLint>(m.GetImage(MAP_OPACITY)->GetID(0));
    m.Render(0, 1, 0);
    EXPECT_EQ(unitState(0), std::make_pair(true, diffuseID));
    EXPECT_EQ(unitState(1), std::make_pair(false, 0)) << "opacity on unit 1 needs the effects";
    m.EnableOGLfx(1);
    m.Render(0, 1, 0);
    EXPECT_EQ(unitState(0), std::make_pair(true, diffuseID));
    EXPECT_EQ(unitState(1), std::make_pair(true, opacityID));
    m.ClearImage(MAP_DIFFUSE);
    m.Render(0, 1, 0);
    EXPECT_EQ(unitState(0), std::make_pair(false, 0));
    EXPECT_EQ(unitState(1), std::make_pair(true, opacityID));
    m.Render(0, 0, 0);
    EXPECT_EQ(unitState(0), std::make_pair(false, 0));
    EXPECT_EQ(unitState(1), std::make_pair(false, 0));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(MaterialRender, ColourKeyedDiffuseMapLetsTheBackgroundThrough) {
    ASSERT_EQ(OGL_Init(), 1);
    // Left column red (the key), right column blue; nearest filtering keeps texels apart.
    std::vector<unsigned char> pixels = {255, 0, 0, 255, 0, 0, 255, 255,
                                         255, 0, 0, 255, 0, 0, 255, 255};
    cimage picture;
    SetPixels(picture, pixels, 2, 2);
    cmaterial m;
    m.SetTransColor(1.0f, 0.0f, 0.0f, 1.0f);
    m.EnableTransColor(1);
    m.SetImage(picture, MAP_DIFFUSE);
    glClearColor(0.0f, 1.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m.Render(0, 1, 0);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(-1, -1);
    glTexCoord2f(1, 0), glVertex2f(1, -1);
    glTexCoord2f(1, 1), glVertex2f(1, 1);
    glTexCoord2f(0, 1), glVertex2f(-1, 1);
    glEnd();
    unsigned char left[4], right[4];
    glReadPixels(10, 32, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, left);
    glReadPixels(54, 32, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, right);
    EXPECT_EQ((std::vector<int>(left, left + 3)), (std::vector<int>{0, 255, 0}));
    EXPECT_EQ((std::vector<int>(right, right + 3)), (std::vector<int>{0, 0, 255}));
}
