// Reads HEIF and AVIF files through libheif, which finds the primary
// picture's EXIF block and XMP packet where phones put them (exiv2 0.27
// misreads pictures made of tiles). libheif brings its codecs along, so it
// is loaded only when such a file is met.

#include "ReaderModule.h"

#include <libheif/heif.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// The open file as libheif reads it: only what it asks for (the boxes that
// describe the file and the metadata, not the picture), in blocks, since it
// asks a few bytes at a time.
struct Input {
    int descriptor;
    int64_t position;
    int64_t size;
    std::vector<char> block;
    int64_t blockStart = 0;

    bool read(char *data, size_t length)
    {
        if (length == 0)
            return true;
        if (position < blockStart || position + int64_t(length) > blockStart + int64_t(block.size())) {
            block.resize(std::max<size_t>(length, 64 * 1024));
            size_t got = 0;
            while (got < block.size()) {
                const ssize_t n = pread(descriptor, block.data() + got, block.size() - got, position + off_t(got));
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0)
                    break;
                got += size_t(n);
            }
            block.resize(got);
            blockStart = position;
            if (got < length)
                return false;
        }
        std::memcpy(data, block.data() + (position - blockStart), length);
        position += int64_t(length);
        return true;
    }
};

const heif_reader reader = {
    1,
    [](void *input) -> int64_t { return static_cast<Input *>(input)->position; },
    [](void *data, size_t size, void *input) -> int { return static_cast<Input *>(input)->read(static_cast<char *>(data), size) ? 0 : 1; },
    [](int64_t position, void *input) -> int {
        static_cast<Input *>(input)->position = position;
        return 0;
    },
    [](int64_t target, void *input) {
        return target <= static_cast<Input *>(input)->size ? heif_reader_grow_status_size_reached
                                                            : heif_reader_grow_status_size_beyond_eof;
    },
};

std::string metadataBlock(const heif_image_handle *handle, const char *type, const char *contentType)
{
    heif_item_id id = 0;
    const int count = contentType ? heif_image_handle_get_list_of_metadata_block_IDs(handle, "mime", nullptr, 0)
                                  : heif_image_handle_get_list_of_metadata_block_IDs(handle, type, &id, 1);
    if (contentType) {
        std::vector<heif_item_id> ids(size_t(std::max(count, 0)));
        heif_image_handle_get_list_of_metadata_block_IDs(handle, "mime", ids.data(), count);
        const auto found = std::find_if(ids.cbegin(), ids.cend(), [&](heif_item_id each) {
            const char *kind = heif_image_handle_get_metadata_content_type(handle, each);
            return kind && std::strcmp(kind, contentType) == 0;
        });
        if (found == ids.cend())
            return {};
        id = *found;
    } else if (count < 1) {
        return {};
    }
    std::string block(heif_image_handle_get_metadata_size(handle, id), '\0');
    if (block.empty() || heif_image_handle_get_metadata(handle, id, block.data()).code != heif_error_Ok)
        return {};
    return block;
}

using Context = std::unique_ptr<heif_context, void (*)(heif_context *)>;
using Handle = std::unique_ptr<heif_image_handle, void (*)(const heif_image_handle *)>;

// The file's primary picture; `input` must outlive the context.
Handle primaryOf(int descriptor, Input &input, Context &context)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        return Handle(nullptr, heif_image_handle_release);
    input = Input{descriptor, 0, int64_t(status.st_size), {}, 0};
    heif_image_handle *primary = nullptr;
    if (!context || heif_context_read_from_reader(context.get(), &reader, &input, nullptr).code != heif_error_Ok
        || heif_context_get_primary_image_handle(context.get(), &primary).code != heif_error_Ok)
        return Handle(nullptr, heif_image_handle_release);
    return Handle(primary, heif_image_handle_release);
}

bool readPicture(int descriptor, ReaderModule::Picture &picture)
{
    Input input{descriptor, 0, 0, {}, 0};
    Context context(heif_context_alloc(), heif_context_free);
    const Handle handle = primaryOf(descriptor, input, context);
    if (!handle)
        return false;
    // The size as stored, before any turn the file asks a viewer for.
    picture.width = heif_image_handle_get_ispe_width(handle.get());
    picture.height = heif_image_handle_get_ispe_height(handle.get());
    // The EXIF block opens with where its TIFF header lies, after these four bytes.
    const std::string exif = metadataBlock(handle.get(), "Exif", nullptr);
    if (exif.size() >= 4) {
        const size_t start = 4 + ((size_t(uint8_t(exif[0])) << 24) | (size_t(uint8_t(exif[1])) << 16)
                                  | (size_t(uint8_t(exif[2])) << 8) | uint8_t(exif[3]));
        if (start < exif.size())
            picture.exif = std::string("Exif\0\0", 6) + exif.substr(start);
    }
    picture.xmp = metadataBlock(handle.get(), nullptr, "application/rdf+xml");
    return true;
}

// The picture's own thumbnail when it has one (phones store one), else
// the picture itself, decoded (turned as the file asks) and made small.
bool readSmallPicture(int descriptor, int side, ReaderModule::Pixels &pixels)
{
    Input input{descriptor, 0, 0, {}, 0};
    Context context(heif_context_alloc(), heif_context_free);
    Handle handle = primaryOf(descriptor, input, context);
    if (!handle)
        return false;
    heif_item_id thumbnail = 0;
    if (heif_image_handle_get_list_of_thumbnail_IDs(handle.get(), &thumbnail, 1) == 1) {
        heif_image_handle *small = nullptr;
        if (heif_image_handle_get_thumbnail(handle.get(), thumbnail, &small).code == heif_error_Ok)
            handle = Handle(small, heif_image_handle_release);
    }
    heif_image *decoded = nullptr;
    if (heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr).code != heif_error_Ok)
        return false;
    std::unique_ptr<heif_image, void (*)(const heif_image *)> image(decoded, heif_image_release);
    const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (width <= 0 || height <= 0)
        return false;
    if (std::max(width, height) > side) {
        const double scale = double(side) / std::max(width, height);
        heif_image *scaled = nullptr;
        if (heif_image_scale_image(image.get(), &scaled, std::max(1, int(width * scale)), std::max(1, int(height * scale)), nullptr).code
            == heif_error_Ok)
            image.reset(scaled);
    }
    int stride = 0;
    const uint8_t *data = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (!data)
        return false;
    pixels.width = heif_image_get_width(image.get(), heif_channel_interleaved);
    pixels.height = heif_image_get_height(image.get(), heif_channel_interleaved);
    pixels.stride = stride;
    pixels.rgba.assign(data, data + size_t(stride) * size_t(pixels.height));
    return true;
}

const ReaderModule::Api api = {ReaderModule::version, readPicture, nullptr, readSmallPicture};

} // namespace

extern "C" __attribute__((visibility("default"))) const ReaderModule::Api *nomen_reader_module()
{
    return &api;
}
