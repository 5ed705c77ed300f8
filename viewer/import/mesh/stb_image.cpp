// The functions of the stb image library, compiled with a limit of memory and for few formats.
#include <cstddef>
#include <cstdlib>

namespace
{

/// The maximum size of one block. An image of the maximum number of pixels fits. A small hostile file
/// may state any size.
constexpr std::size_t kMaxBlock = 320UL << 20U;

void* Reallocate(void* block, std::size_t size)
{
    return size > kMaxBlock ? nullptr : std::realloc(block, size);
}

void Free(void* block)
{
    std::free(block);
}

} // namespace

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
#include <stb/stb_image.h>
