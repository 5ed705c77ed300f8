// The functions of the stb image library, compiled with the limits of this program.
#include <cstddef>
#include <cstdlib>

namespace
{

/// The maximum size of one block. An image of the maximum number of pixels fits; the pixels of a damaged or
/// hostile image may be packed in any ratio.
constexpr std::size_t kMaxBlock = 320UL << 20U;

void* Reallocate(void* block, std::size_t size)
{
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the library handles blocks of C
    return size > kMaxBlock ? nullptr : std::realloc(block, size);
}

void Free(void* block)
{
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the library handles blocks of C
    std::free(block);
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the library is configured by macros
#define STBI_MALLOC(size) Reallocate(nullptr, size)
#define STBI_REALLOC(block, size) Reallocate(block, size)
#define STBI_FREE(block) Free(block)
#define STBI_NO_STDIO
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_ONLY_TGA
#define STBI_ONLY_PNM
#define STB_IMAGE_IMPLEMENTATION
// NOLINTEND(cppcoreguidelines-macro-usage)
#include <stb/stb_image.h>
