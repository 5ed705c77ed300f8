// What the built module offers and what it asks for, read from its file.
#include "tests/geometry/shapes.h"

#include "camera/KARVGLCamera.h"
#include "platform/host/db/entities.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace
{

constexpr std::string_view kOpenGl11 = R"(
glClearIndex glClearColor glClear glIndexMask glColorMask glAlphaFunc glBlendFunc glLogicOp glCullFace
glFrontFace glPointSize glLineWidth glLineStipple glPolygonMode glPolygonOffset glPolygonStipple
glGetPolygonStipple glEdgeFlag glEdgeFlagv glScissor glClipPlane glGetClipPlane glDrawBuffer glReadBuffer
glEnable glDisable glIsEnabled glEnableClientState glDisableClientState glGetBooleanv glGetDoublev
glGetFloatv glGetIntegerv glPushAttrib glPopAttrib glPushClientAttrib glPopClientAttrib glRenderMode
glGetError glGetString glFinish glFlush glHint glClearDepth glDepthFunc glDepthMask glDepthRange
glClearAccum glAccum glMatrixMode glOrtho glFrustum glViewport glPushMatrix glPopMatrix glLoadIdentity
glLoadMatrixd glLoadMatrixf glMultMatrixd glMultMatrixf glRotated glRotatef glScaled glScalef glTranslated
glTranslatef glIsList glDeleteLists glGenLists glNewList glEndList glCallList glCallLists glListBase glBegin
glEnd glVertex2d glVertex2f glVertex2i glVertex2s glVertex3d glVertex3f glVertex3i glVertex3s glVertex4d
glVertex4f glVertex4i glVertex4s glVertex2dv glVertex2fv glVertex2iv glVertex2sv glVertex3dv glVertex3fv
glVertex3iv glVertex3sv glVertex4dv glVertex4fv glVertex4iv glVertex4sv glNormal3b glNormal3d glNormal3f
glNormal3i glNormal3s glNormal3bv glNormal3dv glNormal3fv glNormal3iv glNormal3sv glIndexd glIndexf glIndexi
glIndexs glIndexub glIndexdv glIndexfv glIndexiv glIndexsv glIndexubv glColor3b glColor3d glColor3f
glColor3i glColor3s glColor3ub glColor3ui glColor3us glColor4b glColor4d glColor4f glColor4i glColor4s
glColor4ub glColor4ui glColor4us glColor3bv glColor3dv glColor3fv glColor3iv glColor3sv glColor3ubv
glColor3uiv glColor3usv glColor4bv glColor4dv glColor4fv glColor4iv glColor4sv glColor4ubv glColor4uiv
glColor4usv glTexCoord1d glTexCoord1f glTexCoord1i glTexCoord1s glTexCoord2d glTexCoord2f glTexCoord2i
glTexCoord2s glTexCoord3d glTexCoord3f glTexCoord3i glTexCoord3s glTexCoord4d glTexCoord4f glTexCoord4i
glTexCoord4s glTexCoord1dv glTexCoord1fv glTexCoord1iv glTexCoord1sv glTexCoord2dv glTexCoord2fv
glTexCoord2iv glTexCoord2sv glTexCoord3dv glTexCoord3fv glTexCoord3iv glTexCoord3sv glTexCoord4dv
glTexCoord4fv glTexCoord4iv glTexCoord4sv glRasterPos2d glRasterPos2f glRasterPos2i glRasterPos2s
glRasterPos3d glRasterPos3f glRasterPos3i glRasterPos3s glRasterPos4d glRasterPos4f glRasterPos4i
glRasterPos4s glRasterPos2dv glRasterPos2fv glRasterPos2iv glRasterPos2sv glRasterPos3dv glRasterPos3fv
glRasterPos3iv glRasterPos3sv glRasterPos4dv glRasterPos4fv glRasterPos4iv glRasterPos4sv glRectd glRectf
glRecti glRects glRectdv glRectfv glRectiv glRectsv glVertexPointer glNormalPointer glColorPointer
glIndexPointer glTexCoordPointer glEdgeFlagPointer glGetPointerv glArrayElement glDrawArrays glDrawElements
glInterleavedArrays glShadeModel glLightf glLighti glLightfv glLightiv glGetLightfv glGetLightiv
glLightModelf glLightModeli glLightModelfv glLightModeliv glMaterialf glMateriali glMaterialfv glMaterialiv
glGetMaterialfv glGetMaterialiv glColorMaterial glPixelZoom glPixelStoref glPixelStorei glPixelTransferf
glPixelTransferi glPixelMapfv glPixelMapuiv glPixelMapusv glGetPixelMapfv glGetPixelMapuiv glGetPixelMapusv
glBitmap glReadPixels glDrawPixels glCopyPixels glStencilFunc glStencilMask glStencilOp glClearStencil
glTexGend glTexGenf glTexGeni glTexGendv glTexGenfv glTexGeniv glGetTexGendv glGetTexGenfv glGetTexGeniv
glTexEnvf glTexEnvi glTexEnvfv glTexEnviv glGetTexEnvfv glGetTexEnviv glTexParameterf glTexParameteri
glTexParameterfv glTexParameteriv glGetTexParameterfv glGetTexParameteriv glGetTexLevelParameterfv
glGetTexLevelParameteriv glTexImage1D glTexImage2D glGetTexImage glGenTextures glDeleteTextures
glBindTexture glPrioritizeTextures glAreTexturesResident glIsTexture glTexSubImage1D glTexSubImage2D
glCopyTexImage1D glCopyTexImage2D glCopyTexSubImage1D glCopyTexSubImage2D glMap1d glMap1f glMap2d glMap2f
glGetMapdv glGetMapfv glGetMapiv glEvalCoord1d glEvalCoord1f glEvalCoord1dv glEvalCoord1fv glEvalCoord2d
glEvalCoord2f glEvalCoord2dv glEvalCoord2fv glMapGrid1d glMapGrid1f glMapGrid2d glMapGrid2f glEvalPoint1
glEvalPoint2 glEvalMesh1 glEvalMesh2 glFogf glFogi glFogfv glFogiv glFeedbackBuffer glPassThrough
glSelectBuffer glInitNames glLoadName glPushName glPopName
)";

constexpr std::string_view kGlu = R"(
gluBeginCurve gluBeginPolygon gluBeginSurface gluBeginTrim gluBuild1DMipmapLevels gluBuild1DMipmaps
gluBuild2DMipmapLevels gluBuild2DMipmaps gluBuild3DMipmapLevels gluBuild3DMipmaps gluCheckExtension
gluCylinder gluDeleteNurbsRenderer gluDeleteQuadric gluDeleteTess gluDisk gluEndCurve gluEndPolygon
gluEndSurface gluEndTrim gluErrorString gluGetNurbsProperty gluGetString gluGetTessProperty
gluLoadSamplingMatrices gluLookAt gluNewNurbsRenderer gluNewQuadric gluNewTess gluNextContour
gluNurbsCallback gluNurbsCallbackData gluNurbsCurve gluNurbsProperty gluNurbsSurface gluOrtho2D
gluPartialDisk gluPerspective gluPickMatrix gluProject gluPwlCurve gluQuadricCallback gluQuadricDrawStyle
gluQuadricNormals gluQuadricOrientation gluQuadricTexture gluScaleImage gluSphere gluTessBeginContour
gluTessBeginPolygon gluTessCallback gluTessEndContour gluTessEndPolygon gluTessNormal gluTessProperty
gluTessVertex gluUnProject gluUnProject4
)";

struct Symbol {
    char type = ' ';  ///< the letter that nm gives
    std::string name; ///< demangled, without a version
};

std::string Output(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> part{};
    while (pipe && fgets(part.data(), part.size(), pipe.get()) != nullptr)
        text += part.data();
    return text;
}

/// The dynamic symbols of the module. A line reads "address type name", the address missing for undefined
/// ones.
std::vector<Symbol> Symbols(const std::string& option, bool demangle = true)
{
    std::istringstream lines(Output(std::string("'") + KARV_NM + "' -D " + (demangle ? "-C " : "") + option +
                                    " '" + KARV_MODULE_FILE + "'"));
    constexpr std::size_t kAddressWidth = 16;
    std::vector<Symbol> symbols;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t type = line.find_first_not_of(' ', std::min(line.size(), kAddressWidth));
        if (type == std::string::npos || type + 2 > line.size())
            continue;
        const std::string name = line.substr(type + 2);
        symbols.push_back({line[type], name.substr(0, name.find('@'))});
    }
    return symbols;
}

std::set<std::string> Words(std::string_view text)
{
    std::istringstream stream{std::string(text)};
    std::set<std::string> words;
    for (std::string word; stream >> word;)
        words.insert(word);
    return words;
}

/// The undefined symbols that are named like OpenGL's or GLU's.
std::vector<std::string> GlNames()
{
    std::vector<std::string> names;
    for (const Symbol& symbol : Symbols("--undefined-only", false)) {
        if (symbol.name.size() > 2 && symbol.name.starts_with("gl"))
            names.push_back(symbol.name);
    }
    return names;
}

/// Whether the build adds code of its own to the module, which counts what runs or switches it.
bool IsInstrumented()
{
    const std::string symbols = Output("'" KARV_NM "' -C '" KARV_MODULE_FILE "'");
    return symbols.find("__gcov_") != std::string::npos || symbols.find("karv_mutation") != std::string::npos;
}

bool IsOfTheBoundary(const std::string& name)
{
    for (const char* type :
         {"KARVOpenGLControl", "KARVGLCamera", "KARVGraphicalEntity", "KARVGLVertex", "KARVGLFace"}) {
        if (name.starts_with(std::string(type) + "::"))
            return true;
    }
    for (const char* kind : {"vtable for ", "typeinfo for ", "typeinfo name for "}) {
        if (name == std::string(kind) + "KARVOpenGLControl")
            return true;
    }
    return name == "acrxEntryPoint" || name == "acrxGetApiVersion";
}

bool Exports(const std::string& name)
{
    for (const Symbol& symbol : Symbols("--defined-only")) {
        if (symbol.name == name || symbol.name.starts_with(name + "("))
            return true;
    }
    return false;
}

} // namespace

TEST(Exports, NothingButTheBoundary)
{
    const std::vector<Symbol> symbols = Symbols("--defined-only");
    ASSERT_GT(symbols.size(), 50U);
    for (const Symbol& symbol : symbols)
        EXPECT_TRUE(IsOfTheBoundary(symbol.name)) << symbol.type << ' ' << symbol.name;
}

TEST(Exports, NothingOfTheStandardLibrary)
{
    // Parameters of boundary operations may be of its types; functions and objects may not.
    for (const Symbol& symbol : Symbols("--defined-only"))
        EXPECT_EQ(symbol.name.substr(0, symbol.name.find('(')).find("std::"), std::string::npos)
            << symbol.name;
}

TEST(Exports, NoUniqueSymbolPinsTheModule)
{
    for (const Symbol& symbol : Symbols("--defined-only"))
        EXPECT_NE(symbol.type, 'u') << symbol.name;
}

TEST(Exports, EveryBoundaryClassIsThere)
{
    for (const char* name :
         {"KARVOpenGLControl::KARVOpenGLControl", "KARVOpenGLControl::~KARVOpenGLControl",
          "KARVOpenGLControl::CreateCtrl", "vtable for KARVOpenGLControl", "typeinfo for KARVOpenGLControl",
          "KARVGLCamera::KARVGLCamera", "KARVGLCamera::UpdateCamera", "KARVGLCamera::ZoomCamera",
          "KARVGraphicalEntity::KARVGraphicalEntity", "KARVGraphicalEntity::DoesPointContainExtent",
          "KARVGLVertex::KARVGLVertex"})
        EXPECT_TRUE(Exports(name)) << name;
}

TEST(Exports, EntryPointsForTheHostAreThereUndecorated)
{
    std::vector<std::string> names;
    for (const Symbol& symbol : Symbols("--defined-only", false))
        names.push_back(symbol.name);
    EXPECT_THAT(names, Contains("acrxEntryPoint"));
    EXPECT_THAT(names, Contains("acrxGetApiVersion"));
}

TEST(Exports, ProcessNotificationsAreTheModulesOwn)
{
    EXPECT_FALSE(Exports("DllMain"));
}

TEST(Imports, GlFunctionsAreOfOpenGl11OrGlu)
{
    std::set<std::string> known = Words(kOpenGl11);
    known.merge(Words(kGlu));
    const std::vector<std::string> names = GlNames();
    ASSERT_GT(names.size(), 30U);
    for (const std::string& name : names)
        EXPECT_TRUE(known.contains(name)) << name;
}

TEST(Imports, NothingDeletesADisplayList)
{
    EXPECT_THAT(GlNames(), Not(Contains("glDeleteLists")));
}

TEST(Imports, NeitherFilesNorTheEnvironmentNorThreadsNorLocks)
{
    if (IsInstrumented())
        GTEST_SKIP() << "what counts or switches lines reads files and the environment itself";
    const std::set<std::string> functions = Words(
        "getenv secure_getenv environ fopen fopen64 freopen open open64 openat openat64 creat mkstemp mmap "
        "mmap64 stat stat64 opendir dlopen system popen clone fork");
    const std::set<std::string> families = Words(
        "pthread_ sem_ thrd_ mtx_ cnd_ std::thread std::mutex std::condition_variable std::basic_filebuf "
        "std::basic_ifstream std::basic_ofstream std::basic_fstream std::filesystem::");
    const std::vector<Symbol> symbols = Symbols("--undefined-only");
    ASSERT_GT(symbols.size(), 50U);
    for (const Symbol& symbol : symbols) {
        const auto is_of = [&](const std::string& family) { return symbol.name.starts_with(family); };
        EXPECT_FALSE(functions.contains(symbol.name)) << symbol.name;
        EXPECT_TRUE(std::ranges::none_of(families, is_of)) << symbol.name;
    }
}

TEST(Imports, RecorderStandsBeforeEveryGlFunction)
{
    const auto file_of = [](void* address) {
        Dl_info info{};
        return dladdr(address, &info) != 0 ? std::string(info.dli_fname) : std::string();
    };
    const std::string program = file_of(dlsym(RTLD_DEFAULT, "glBegin"));
    EXPECT_THAT(program, testing::HasSubstr("module_tests"));
    for (const std::string& name : GlNames())
        EXPECT_EQ(file_of(dlsym(RTLD_DEFAULT, name.c_str())), program) << name;
}

namespace
{

class ImportedEnums : public karv_test::GlTest
{
};

} // namespace

TEST_F(ImportedEnums, CameraAndGeometryUseNoneBeyondOpenGl11)
{
    const karv_test::GlRecording recording;
    KARVGLCamera camera;
    float factor = 1.0F;
    float fov = 40.0F;
    for (const bool perspective : {false, true}) {
        camera.SetPerspectiveOn(perspective);
        camera.RefreshCameraView(40.0, 10.0, 1.0F);
        camera.ZoomAt(factor, fov);
        camera.SetViewSE();
    }
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    KARVGraphicalEntity lines(&line, KARVGraphicalEntity::EntityType0);
    KARVGraphicalEntity faces({karv_test::Triangle(), karv_test::Square(), karv_test::LShape()},
                              KARVGraphicalEntity::EntityType0, karv_test::kRed);
    for (KARVGraphicalEntity* entity : {&lines, &faces}) {
        entity->DrawObjectQuads();
        entity->DrawObjectLines();
    }
    EXPECT_GT(recording.Calls().size(), 60U);
    EXPECT_THAT(recording.EnumsBeyond11(), IsEmpty());
}
