// The probe for a multisampled pixel format: its queries, how it takes their results, and what it remembers
// for later controls. Its two process-wide values show in the pixel format that a control gets.
#include "tests/support/control_test.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"

#include <array>

using namespace karv_test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// The results of the queries for 4 and for 2 samples. A call may fail although it has written a format and a
/// count.
enum class Answer { CallFails, CallFailsWithAFormat, NoFormat, Found, FoundMany };

struct Query {
    HDC dc = nullptr;
    std::vector<int> attributes; ///< up to and including the final pair of zeros
    std::array<float, 2> float_attributes{};
    UINT max_formats = 0;
};

/// The answers of the scripted entry points and the record of their calls. Plain functions need globals.
const char* extensions = nullptr;
Answer four_samples = Answer::Found;
Answer two_samples = Answer::Found;
int offered_format = 0;
std::vector<HDC> asked_dcs;
std::vector<Query> queries;

const char* WINAPI GetExtensions(HDC dc)
{
    asked_dcs.push_back(dc);
    return extensions;
}

BOOL WINAPI ChooseFormat(HDC dc, const int* attributes, const float* float_attributes, UINT max_formats,
                         int* formats, UINT* count)
{
    Query query{dc, {}, {float_attributes[0], float_attributes[1]}, max_formats};
    while (attributes[0] != 0) {
        query.attributes.insert(query.attributes.end(), attributes, attributes + 2);
        attributes += 2;
    }
    query.attributes.insert(query.attributes.end(), attributes, attributes + 2);
    const int samples = query.attributes.at(query.attributes.size() - 3);
    queries.push_back(query);
    switch (samples == 4 ? four_samples : two_samples) {
    case Answer::CallFails:
        *count = 0;
        return FALSE;
    case Answer::CallFailsWithAFormat:
        *formats = offered_format;
        *count = 1;
        return FALSE;
    case Answer::NoFormat:
        *count = 0;
        return TRUE;
    case Answer::Found:
    case Answer::FoundMany:
        break;
    }
    *formats = offered_format;
    *count = (samples == 4 ? four_samples : two_samples) == Answer::Found ? 1 : 7;
    return TRUE;
}

template <typename Function>
PROC ToProc(Function* function)
{
    return reinterpret_cast<PROC>(reinterpret_cast<void (*)()>(function));
}

class ControlProbe : public ControlTest
{
  protected:
    ControlProbe() : plain_format_(PlainFormat())
    {
        extensions = "WGL_ARB_multisample";
        four_samples = Answer::Found;
        two_samples = Answer::Found;
        asked_dcs.clear();
        queries.clear();
        offered_format = plain_format_ == 1 ? 2 : 1;
    }

    /// The format that is chosen without a probe, taken from a control made without one.
    int PlainFormat()
    {
        const EntryPointAnswer none("wglGetExtensionsStringARB", nullptr);
        const GlAnswer no_string("glGetString", 0);
        return NewControl(false, 0, 0)->pixelFormat;
    }

    /// Whether a control made now takes the probe's format.
    bool TakesOfferedFormat() { return NewControl(false, 0, 0)->pixelFormat == offered_format; }

    /// The same for a control that lives to the end of the test, because destroying one resets the format.
    bool TakesFormatAndStays()
    {
        kept_.push_back(NewControl(false, 0, 0));
        return kept_.back()->pixelFormat == offered_format;
    }

    void TearDown() override
    {
        kept_.clear();
        ControlTest::TearDown();
    }

    bool Accepts(const char* words)
    {
        extensions = words;
        return TakesOfferedFormat();
    }

    /// The number of windows of the probe that still exist.
    int LeftProbes() const
    {
        int left = 0;
        for (const WindowCreation& creation : window_calls_.Creations())
            left += creation.name == L"Dummy" && ::IsWindow(creation.window) ? 1 : 0;
        return left;
    }

    EntryPointAnswer extensions_answer_{"wglGetExtensionsStringARB", ToProc(&GetExtensions)};
    EntryPointAnswer choose_answer_{"wglChoosePixelFormatARB", ToProc(&ChooseFormat)};
    int plain_format_ = 0;
    std::vector<std::unique_ptr<KARVOpenGLControl>> kept_;
};

TEST_F(ControlProbe, FourSamplesFoundGiveTheirFormatWithOneQuery)
{
    const auto control = NewControl();
    EXPECT_EQ(control->pixelFormat, offered_format);
    EXPECT_EQ(queries.size(), 1U);
    EXPECT_EQ(::GetPixelFormat(control->hDC), offered_format);
}

TEST_F(ControlProbe, TheQueryListsItsAttributesInOrder)
{
    const auto control = NewControl();
    ASSERT_EQ(queries.size(), 1U);
    EXPECT_THAT(queries[0].attributes,
                ElementsAre(WGL_DRAW_TO_WINDOW_ARB, 1, WGL_SUPPORT_OPENGL_ARB, 1, WGL_ACCELERATION_ARB,
                            WGL_FULL_ACCELERATION_ARB, WGL_COLOR_BITS_ARB, 24, WGL_ALPHA_BITS_ARB, 8,
                            WGL_DEPTH_BITS_ARB, 16, WGL_STENCIL_BITS_ARB, 0, WGL_DOUBLE_BUFFER_ARB, 1,
                            WGL_SAMPLE_BUFFERS_ARB, 1, WGL_SAMPLES_ARB, 4, 0, 0));
    EXPECT_THAT(queries[0].float_attributes, ElementsAre(0.0F, 0.0F));
    EXPECT_EQ(queries[0].max_formats, 1U);
}

TEST_F(ControlProbe, TheQueriesAndTheStringConcernTheProbeWindow)
{
    window_calls_.Clear();
    const auto control = NewControl();
    const WindowCreation& dummy = window_calls_.Creations().back();
    ASSERT_EQ(dummy.name, L"Dummy");
    const HDC dummy_dc = queries.at(0).dc;
    EXPECT_EQ(window_calls_.NameOf(dummy_dc), "dc of Dummy");
    EXPECT_THAT(asked_dcs, Contains(dummy_dc)); // the current device context is the probe window's
}

TEST_F(ControlProbe, OnlyTwoSamplesFoundWinWithTheSecondQuery)
{
    four_samples = Answer::NoFormat;
    const auto control = NewControl();
    EXPECT_EQ(control->pixelFormat, offered_format);
    ASSERT_EQ(queries.size(), 2U);
    std::vector<int> expected = queries[0].attributes;
    expected.at(expected.size() - 3) = 2; // the value of the last pair before the zeros
    EXPECT_EQ(queries[1].attributes, expected);
    EXPECT_EQ(queries[1].dc, queries[0].dc);
    EXPECT_THAT(queries[1].float_attributes, ElementsAre(0.0F, 0.0F));
    EXPECT_EQ(queries[1].max_formats, 1U);
}

TEST_F(ControlProbe, MoreThanOneFormatCountedIsAFindToo)
{
    four_samples = Answer::FoundMany;
    EXPECT_TRUE(TakesOfferedFormat());
    EXPECT_EQ(queries.size(), 1U);
}

TEST_F(ControlProbe, AFailedCallFindsNothingWhateverItLeftBehind)
{
    four_samples = Answer::CallFailsWithAFormat;
    two_samples = Answer::CallFailsWithAFormat;
    EXPECT_FALSE(TakesOfferedFormat());
    EXPECT_EQ(queries.size(), 2U);
}

TEST_F(ControlProbe, TheProbeWindowGetsThePlainFormatAndTheControlTheFoundOne)
{
    window_calls_.Clear();
    const auto control = NewControl();
    EXPECT_THAT(window_calls_.Listing(),
                Contains("SetPixelFormat(dc of Dummy, " + std::to_string(plain_format_) + ")"));
    EXPECT_THAT(window_calls_.Listing(),
                Contains("SetPixelFormat(dc of 3DView, " + std::to_string(offered_format) + ")"));
}

TEST_F(ControlProbe, AMissLooksUpNoQuery)
{
    extensions = "WGL_ARB_pixel_format";
    window_calls_.Clear();
    const auto control = NewControl();
    EXPECT_EQ(window_calls_.Count("wglGetProcAddress(wglGetExtensionsStringARB)"), 1);
    EXPECT_EQ(window_calls_.Count("wglGetProcAddress(wglChoosePixelFormatARB)"), 0);
}

TEST_F(ControlProbe, AFailedCallForFourSamplesIsFollowedByTwo)
{
    four_samples = Answer::CallFails;
    EXPECT_TRUE(TakesOfferedFormat());
    EXPECT_EQ(queries.size(), 2U);
}

TEST_F(ControlProbe, NoFormatForEitherNumberFallsBack)
{
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    const auto control = NewControl();
    EXPECT_EQ(control->pixelFormat, plain_format_);
    EXPECT_EQ(queries.size(), 2U);
}

TEST_F(ControlProbe, FailedCallsForBothNumbersFallBack)
{
    four_samples = Answer::CallFails;
    two_samples = Answer::CallFails;
    EXPECT_FALSE(TakesOfferedFormat());
}

TEST_F(ControlProbe, SuccessDestroysTheProbeWindowAndItsContext)
{
    const int before = LeftProbes();
    window_calls_.Clear();
    const auto control = NewControl();
    EXPECT_EQ(LeftProbes(), before);
    EXPECT_THAT(window_calls_.Listing(), Contains("DestroyWindow(Dummy)"));
}

TEST_F(ControlProbe, TheFallbackLeavesTheProbeWindowHiddenWithItsContext)
{
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    const int before = LeftProbes();
    const auto contexts_before = window_calls_.Contexts().size();
    window_calls_.Clear();
    const auto control = NewControl();
    EXPECT_EQ(LeftProbes(), before + 1);
    const WindowCreation& dummy = window_calls_.Creations().back();
    ASSERT_EQ(dummy.name, L"Dummy");
    EXPECT_TRUE(::IsWindow(dummy.window));
    EXPECT_FALSE(::IsWindowVisible(dummy.window));
    for (const std::string& line : window_calls_.Listing()) {
        EXPECT_FALSE(line.starts_with("wglDeleteContext")) << line;
        EXPECT_FALSE(line.starts_with("ReleaseDC")) << line;
        EXPECT_FALSE(line.ends_with(", none)")) << line;
    }
    ASSERT_EQ(window_calls_.Contexts().size(), contexts_before + 2);
    // The context still exists: it can be made current again.
    EXPECT_TRUE(::wglMakeCurrent(queries.at(0).dc, window_calls_.Contexts().at(contexts_before)));
}

TEST_F(ControlProbe, TheFallbackMakesTheControlsOwnContextCurrent)
{
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    const auto control = NewControl();
    EXPECT_EQ(::wglGetCurrentContext(), control->hRC);
    EXPECT_EQ(::GetPixelFormat(control->hDC), plain_format_);
}

TEST_F(ControlProbe, TheNameAloneIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_ARB_multisample"));
}

TEST_F(ControlProbe, TheNameAtTheVeryStartIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_ARB_multisample WGL_ARB_pixel_format"));
}

TEST_F(ControlProbe, TheNameAtTheVeryEndIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_ARB_pixel_format WGL_ARB_multisample"));
}

TEST_F(ControlProbe, TheNameBetweenSpacesIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_A WGL_ARB_multisample WGL_B"));
}

TEST_F(ControlProbe, TheNameBeforeATrailingSpaceIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_ARB_multisample "));
}

TEST_F(ControlProbe, TheStartOfALongerWordIsAMiss)
{
    EXPECT_FALSE(Accepts("WGL_ARB_multisample_more WGL_B"));
}

TEST_F(ControlProbe, TheEndOfALongerWordIsAMiss)
{
    EXPECT_FALSE(Accepts("MY_WGL_ARB_multisample"));
}

TEST_F(ControlProbe, ATabIsNoWordBoundary)
{
    EXPECT_FALSE(Accepts("WGL_A\tWGL_ARB_multisample"));
    EXPECT_FALSE(Accepts("WGL_ARB_multisample\tWGL_B"));
}

TEST_F(ControlProbe, AnExactNameAfterALongerWordIsAHit)
{
    EXPECT_TRUE(Accepts("WGL_ARB_multisample_more WGL_ARB_multisample"));
}

TEST_F(ControlProbe, AnExactNameAfterARejectedOneInTheSameWordIsAMiss)
{
    EXPECT_FALSE(Accepts("WGL_ARB_multisampleWGL_ARB_multisample"));
}

TEST_F(ControlProbe, AnExactNameAfterManyRejectedOnesIsAHit)
{
    EXPECT_TRUE(
        Accepts("xWGL_ARB_multisample WGL_ARB_multisamplex xWGL_ARB_multisample WGL_ARB_multisample"));
}

TEST_F(ControlProbe, AnEmptyStringIsAMissWithoutAQuery)
{
    EXPECT_FALSE(Accepts(""));
    EXPECT_THAT(queries, IsEmpty());
}

TEST_F(ControlProbe, ADifferentCaseIsAMiss)
{
    EXPECT_FALSE(Accepts("wgl_arb_multisample"));
}

TEST_F(ControlProbe, ATruncatedNameIsAMiss)
{
    EXPECT_FALSE(Accepts("WGL_ARB_multisampl"));
}

TEST_F(ControlProbe, AMissingStringEntryPointAsksGlForItsExtensions)
{
    const EntryPointAnswer none("wglGetExtensionsStringARB", nullptr);
    const GlRecording gl;
    const auto control = NewControl();
    ASSERT_FALSE(gl.Calls().empty());
    EXPECT_EQ(gl.Calls().front().text, "glGetString(GL_EXTENSIONS)");
}

TEST_F(ControlProbe, AMissingStringEntryPointTakesTheNameFromGl)
{
    const EntryPointAnswer none("wglGetExtensionsStringARB", nullptr);
    const char* const words = "WGL_ARB_multisample";
    const GlAnswer answer("glGetString", reinterpret_cast<std::uintptr_t>(words), GL_EXTENSIONS);
    EXPECT_TRUE(TakesOfferedFormat());
}

TEST_F(ControlProbe, AMissingQueryEntryPointFallsBack)
{
    const EntryPointAnswer none("wglChoosePixelFormatARB", nullptr);
    EXPECT_FALSE(TakesOfferedFormat());
    EXPECT_THAT(queries, IsEmpty());
}

TEST_F(ControlProbe, AStringThatIsThereIsNotAskedOfGl)
{
    const GlRecording gl;
    const auto control = NewControl();
    EXPECT_EQ(gl.Count("glGetString"), 0);
}

TEST_F(ControlProbe, AnEmptyStringIsThereAndIsNotAskedOfGl)
{
    extensions = "";
    const GlRecording gl;
    const auto control = NewControl();
    EXPECT_EQ(gl.Count("glGetString"), 0);
}

TEST_F(ControlProbe, ANullStringIsReplacedByThatOfGl)
{
    extensions = nullptr;
    const char* const words = "GL_EXT_one WGL_ARB_multisample";
    const GlAnswer answer("glGetString", reinterpret_cast<std::uintptr_t>(words), GL_EXTENSIONS);
    EXPECT_TRUE(TakesOfferedFormat());
}

TEST_F(ControlProbe, NullStringsFromBothFallBackWithoutAQuery)
{
    extensions = nullptr;
    const GlAnswer answer("glGetString", 0, GL_EXTENSIONS);
    EXPECT_FALSE(TakesOfferedFormat());
    EXPECT_THAT(queries, IsEmpty());
}

TEST_F(ControlProbe, ASecondControlUsesTheRememberedFormatWhenBothQueriesFail)
{
    const auto first = NewControl();
    four_samples = Answer::NoFormat;
    two_samples = Answer::CallFails;
    window_calls_.Clear();
    const auto second = NewControl();
    EXPECT_EQ(second->pixelFormat, offered_format);
    EXPECT_THAT(window_calls_.Listing(), Contains("DestroyWindow(Dummy)"));
}

TEST_F(ControlProbe, AfterTheFirstControlIsGoneANewOneFallsBack)
{
    auto first = NewControl();
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    first.reset();
    EXPECT_FALSE(TakesOfferedFormat());
}

TEST_F(ControlProbe, AnyControlThatGoesMakesTheOthersFallBack)
{
    const auto first = NewControl();
    auto second = NewControl();
    second.reset();
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    EXPECT_FALSE(TakesOfferedFormat());
}

TEST_F(ControlProbe, AMissingNameForgetsTheRememberedFormat)
{
    const auto first = NewControl();
    extensions = "";
    EXPECT_FALSE(TakesFormatAndStays());
    extensions = "WGL_ARB_multisample";
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    EXPECT_FALSE(TakesFormatAndStays());
}

TEST_F(ControlProbe, NullStringsForgetTheRememberedFormat)
{
    const auto first = NewControl();
    {
        extensions = nullptr;
        const GlAnswer no_string("glGetString", 0, GL_EXTENSIONS);
        EXPECT_FALSE(TakesFormatAndStays());
    }
    extensions = "WGL_ARB_multisample";
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    EXPECT_FALSE(TakesFormatAndStays());
}

TEST_F(ControlProbe, AMissingQueryForgetsTheRememberedFormat)
{
    const auto first = NewControl();
    {
        const EntryPointAnswer none("wglChoosePixelFormatARB", nullptr);
        EXPECT_FALSE(TakesFormatAndStays());
    }
    four_samples = Answer::NoFormat;
    two_samples = Answer::NoFormat;
    EXPECT_FALSE(TakesFormatAndStays());
}

TEST_F(ControlProbe, ALaterSuccessReplacesTheRememberedFormat)
{
    const auto first = NewControl();
    const int remembered = offered_format;
    offered_format = plain_format_;
    const auto second = NewControl();
    EXPECT_EQ(first->pixelFormat, remembered);
    EXPECT_EQ(second->pixelFormat, plain_format_);
}

/// The probe with the real driver, where a number of samples is refused or an entry point is hidden.
class ControlProbeOfDriver : public ControlTest
{
  protected:
    static int Samples()
    {
        constexpr GLenum kSamples = 0x80A9;
        GLint samples = 0;
        glGetIntegerv(kSamples, &samples);
        return samples;
    }
};

TEST_F(ControlProbeOfDriver, TheDriversOwnFormatsGiveFourSamples)
{
    const auto control = NewControl();
    EXPECT_EQ(Samples(), 4);
}

TEST_F(ControlProbeOfDriver, AHiddenQueryEntryPointGivesAPlainContext)
{
    const EntryPointAnswer none("wglChoosePixelFormatARB", nullptr);
    const auto control = NewControl();
    ASSERT_NE(control->hRC, nullptr);
    EXPECT_EQ(Samples(), 0);
}

TEST_F(ControlProbeOfDriver, AHiddenStringEntryPointGivesAPlainContext)
{
    // The GL extensions of the driver do not list extensions of the window system.
    const EntryPointAnswer none("wglGetExtensionsStringARB", nullptr);
    const auto control = NewControl();
    ASSERT_NE(control->hRC, nullptr);
    EXPECT_EQ(Samples(), 0);
}

} // namespace
