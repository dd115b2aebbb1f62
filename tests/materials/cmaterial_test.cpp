#include "cmaterial.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cio.h"
#include "materials/materialsupport.h"
#include "oglext.h"
#include "support/materialrecord.h"
#include "support/testsupport.h"

namespace {

using Floats = std::vector<float>;

// The five colours, the amounts, environment map type, switches and shininess, in that order.
Floats SettingsOf(const cmaterial& m) {
    Floats out;
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

const Floats kDefaults = {0.5f, 0.5f, 0.5f, 1, 1,   1,   1,   1, 0,   0, 0, 0, 0, 0, 0,  0,
                          0,    0,    0,    0, 100, 100, 100, 0, 100, 0, 1, 0, 1, 0, 100};

// The GL material of the back faces (ambient, diffuse, specular, emission, shininess), expected
// equal to that of the front faces; then whether blending and depth writes are on.
Floats GLMaterialState() {
    Floats front(17), back(17);
    int at = 0;
    for (GLenum name : {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS}) {
        glGetMaterialfv(GL_FRONT, name, &front[at]);
        glGetMaterialfv(GL_BACK, name, &back[at]);
        at += 4;
    }
    EXPECT_EQ(front, back);
    GLboolean depthWrites = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrites);
    back.insert(back.end(), {float(glIsEnabled(GL_BLEND)), float(depthWrites)});
    return back;
}

}  // namespace

TEST(MaterialSettings, DefaultsNameColourFormsAndClamps) {
    cmaterial m(nullptr);
    EXPECT_STREQ(m.GetName(), "Mat1");
    char copied[8] = "xxxxxxx";
    m.GetName(copied);  // the name and its terminator, nothing past them
    EXPECT_EQ(std::string(copied, 7), std::string("Mat1\0xx", 7));
    EXPECT_EQ(SettingsOf(m), kDefaults);
    // Intended: refraction is the one amount allowed up to 1000.
    m.SetShininess(200.0f);
    m.SetRefractionAmount(1001);
    m.SetReflectionAmount(500);
    m.SetEmissiveAmount(-4);
    EXPECT_EQ((Floats{m.GetShininess(), float(m.GetRefractionAmount()),
                      float(m.GetReflectionAmount()), float(m.GetEmissiveAmount())}),
              (Floats{128, 1000, 100, 0}));
    m.Clear(0);
    EXPECT_EQ(SettingsOf(m), kDefaults);
}

TEST(MaterialMaps, SlotsHandOnSettingsAndDecideTransparency) {
    cmaterial m("Glass");
    cimage red, grey;
    SolidImage(red, {255, 0, 0, 255});
    SolidImage(grey, {90, 120, 150, 255});
    m.SetTransColor(255, 0, 0, 255);
    EXPECT_EQ(m.SetImage(red, MAP_DIFFUSE), 1);
    m.EnableAlpha(0);  // the key alone makes it transparent
    EXPECT_EQ(m.IsTransparent(), 0);
    m.EnableTransColor(1);
    EXPECT_EQ(m.IsTransparent(), 1) << "every pixel matches the key";
    m.SetTransColor(0.0f, 1.0f, 0.0f, 1.0f);
    EXPECT_EQ(m.IsTransparent(), 0);

    EXPECT_EQ(m.SetImage(grey, MAP_OPACITY), 1);
    EXPECT_EQ(PixelAt(*m.GetImage(MAP_OPACITY), 1, 1)[3], 120) << "alpha from the colours";
    EXPECT_EQ(m.IsTransparent(), 1);
    m.ClearImage(MAP_OPACITY);
    EXPECT_EQ(m.IsTransparent(), 0);
    m.SetOpacityAmount(99);
    EXPECT_EQ(m.IsTransparent(), 1);

    EXPECT_EQ(m.SetImage(grey, MAP_BUMP) + m.SetImage(grey, 6), 1);
    EXPECT_EQ(m.GetImage(6), nullptr);
    EXPECT_EQ(m.NumImages(), 2);
    cmaterial copy;
    copy.Copy(&m);
    m.Clear(1);
    EXPECT_EQ(m.NumImages() + m.GetOpacityAmount(), 99) << "Clear(1) keeps only the settings";
    EXPECT_EQ(copy.NumImages() + copy.GetOpacityAmount(), 101) << "a copy has its own maps";
}

TEST(MaterialRecord, EveryVersionLoadsWhatItHoldsAndTheNewestSavesTheSameBytes) {
    TempDir dir;
    ASSERT_TRUE(SolidPicture(dir.File("rust.png"), "#010203", 2, 2));
    MaterialRecordBytes record;  // distinct values in every field
    record.name = "AnOldMaterialWithANameOf34Letters";
    float* colours[] = {record.ambient, record.diffuse, record.specular, record.emissive,
                        record.transColor};
    for (int i = 0; i < 20; ++i) colours[i / 4][i % 4] = (i + 1) / 32.0f;
    for (int i = 0; i < 6; ++i) record.amounts[i] = 11 * (i + 1);
    record.transColorFlag = record.oglfxFlag = 1;
    record.alphaFlag = 0;
    record.shininess = 42.5f;
    record.envMapType = 3;
    record.maps[MAP_BUMP].path = "/missing/bump.png";
    record.maps[MAP_EMISSIVE] = {dir.File("rust.png"), 2, 3.0f, 1, 1, 1, {1, 2, 3}, 0};
    for (std::uint32_t version = 1; version <= 16; ++version) {
        SCOPED_TRACE("version " + std::to_string(version));
        RecordStream stream(record.Bytes(version));
        cmaterial m;
        ASSERT_EQ(m.Load(stream.in, version), 1);
        EXPECT_EQ(std::string(m.GetName()), record.name.substr(0, version >= 13 ? 63 : 31));
        // Fields a version lacks keep the defaults. Intended: files below version 8 hold 128
        // minus the shininess.
        const float v2 = version > 1, v3 = version >= 3, v10 = version >= 10, v12 = version >= 12;
        const float env = version > 4 ? 3 : 1, shininess = version >= 8 ? 42.5f : 85.5f;
        Floats expected;
        for (int i = 0; i < 20; ++i) expected.push_back(i < 16 || v3 ? (i + 1) / 32.0f : 0);
        expected.insert(expected.end(), {11, 22, 33, 44, 55, 66, env, v3, 1 - v12, v12, shininess});
        EXPECT_EQ(SettingsOf(m), expected);
        EXPECT_STREQ(m.GetImage(MAP_BUMP)->GetPathNamePtr(), "/missing/bump.png");
        ASSERT_EQ(m.NumImages(), 1);
        cimage* image = m.GetImage(MAP_EMISSIVE);
        EXPECT_EQ((Floats{float(image->GetStartFrame()), image->GetFrameRate(),
                          float(image->GetFramesFlag()), float(image->GetFreezeFlag()),
                          float(image->IsColorKeyEnabled()), float(image->IsAlphaEnabled()),
                          float(PixelAt(*image, 0, 0)[3])}),
                  (Floats{2 * v2, 1 + 2 * v2, v2, v2, v10, 1 - v12, 255 * (1 - v10)}));
    }
    // The missing file keeps its path, and the loaded one its settings.
    RecordStream stream(record.Bytes(16));
    cmaterial m;
    ASSERT_EQ(m.Load(stream.in, 16), 1);
    EXPECT_EQ(Saved([&m](cio_save& out) { EXPECT_EQ(m.Save(out), 1); }), record.Bytes(16));
}

using MaterialRender = GLTest;

TEST_F(MaterialRender, SetsColoursBlendingDepthWritesAndTextureUnits) {
    ASSERT_EQ(OGL_Init(), 1);
    cmaterial m;
    m.SetDiffuse(0.8f, 0.6f, 0.4f, 1.0f);
    m.SetEmissive(1.0f, 0.5f, 0.0f, 1.0f);
    m.SetDiffuseAmount(50);
    m.SetEmissiveAmount(50);
    m.SetOpacityAmount(25);
    m.Render(0, 0, 1);
    EXPECT_EQ(GLMaterialState(), (Floats{0.5f, 0.5f, 0.5f, 1, 0.4f, 0.3f, 0.2f, 0.25f, 0, 0, 0, 0,
                                         0.5f, 0.25f, 0, 0.5f, 28, 1, 0}));
    m.Render(0, 0, 0);
    EXPECT_EQ(GLMaterialState().back(), 1) << "without lighting the amount is not looked at";
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);

    ASSERT_EQ(OGL_MulTex_Supported(), 1);
    auto activeTexture =
        reinterpret_cast<void (*)(GLenum)>(CoreGLContext_GetProcAddress("glActiveTexture"));
    ASSERT_NE(activeTexture, nullptr);
    // Per unit 0 and 1: whether texturing is on, and the bound texture.
    const auto units = [&] {
        std::vector<GLint> out(4);
        for (int unit : {1, 0}) {
            activeTexture(GL_TEXTURE0 + unit);
            out[2 * unit] = glIsEnabled(GL_TEXTURE_2D);
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &out[2 * unit + 1]);
        }
        return out;
    };
    cimage picture;
    SolidImage(picture, {200, 100, 50, 255});
    m.SetImage(picture, MAP_DIFFUSE);
    m.SetImage(picture, MAP_OPACITY);
    const GLint diffuse = m.GetImage(MAP_DIFFUSE)->GetID(0),
                opacity = m.GetImage(MAP_OPACITY)->GetID(0);
    m.Render(0, 1, 0);
    EXPECT_EQ(units(), (std::vector<GLint>{1, diffuse, 0, 0})) << "unit 1 needs the effects";
    m.EnableOGLfx(1);
    m.Render(0, 1, 0);
    EXPECT_EQ(units(), (std::vector<GLint>{1, diffuse, 1, opacity}));
    m.SetTransColor(200, 100, 50, 255);  // the key alone makes the diffuse map transparent
    m.EnableAlpha(0);
    m.EnableTransColor(1);
    m.Render(0, 1, 0);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
    m.ClearImage(MAP_DIFFUSE);
    m.Render(0, 1, 0);
    EXPECT_EQ(units(), (std::vector<GLint>{0, 0, 1, opacity}));
    m.Render(0, 0, 0);
    EXPECT_EQ(units(), (std::vector<GLint>(4, 0)));
}
