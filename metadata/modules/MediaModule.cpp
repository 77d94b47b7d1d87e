// Reads recordings through libavformat (FFmpeg): QuickTime and MP4 (MOV,
// MP4, M4V, 3GP, M4A), Matroska and WebM, AVI. Their dates, length and
// picture size, and the tags the container holds. libavformat brings
// codecs, VA-API, OpenCL and TLS along, so it is loaded only when a
// recording is met.

#include "ReaderModule.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The open file as libavformat reads it: through the descriptor, with a
// position of its own.
struct Input {
    int descriptor;
    int64_t position = 0;
    int64_t size = 0;
};

int readPacket(void *opaque, uint8_t *buffer, int size)
{
    auto *input = static_cast<Input *>(opaque);
    for (;;) {
        const ssize_t n = pread(input->descriptor, buffer, size_t(size), off_t(input->position));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return AVERROR(errno);
        if (n == 0)
            return AVERROR_EOF;
        input->position += n;
        return int(n);
    }
}

int64_t seekTo(void *opaque, int64_t offset, int whence)
{
    auto *input = static_cast<Input *>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return input->size;
    case SEEK_SET:
        input->position = offset;
        break;
    case SEEK_CUR:
        input->position += offset;
        break;
    case SEEK_END:
        input->position = input->size + offset;
        break;
    default:
        return -1;
    }
    return input->position;
}

std::string valueOf(const AVFormatContext *context, const char *key)
{
    const AVDictionaryEntry *entry = av_dict_get(context->metadata, key, nullptr, 0);
    for (unsigned i = 0; !entry && i < context->nb_streams; ++i)
        entry = av_dict_get(context->streams[i]->metadata, key, nullptr, 0);
    return entry && entry->value ? std::string(entry->value) : std::string();
}

bool readRecording(int descriptor, ReaderModule::Recording &recording)
{
    static std::once_flag quiet;
    std::call_once(quiet, [] { av_log_set_level(AV_LOG_QUIET); });
    struct stat status;
    if (fstat(descriptor, &status) != 0)
        return false;
    Input input{descriptor, 0, int64_t(status.st_size)};
    constexpr int bufferSize = 64 * 1024;
    auto *buffer = static_cast<unsigned char *>(av_malloc(bufferSize));
    if (!buffer)
        return false;
    AVIOContext *io = avio_alloc_context(buffer, bufferSize, 0, &input, readPacket, nullptr, seekTo);
    if (!io) {
        av_free(buffer);
        return false;
    }
    AVFormatContext *context = avformat_alloc_context();
    bool read = false;
    if (context) {
        context->pb = io;
        context->flags |= AVFMT_FLAG_CUSTOM_IO;
        // On failure the context is freed by the call itself.
        if (avformat_open_input(&context, nullptr, nullptr, nullptr) == 0) {
            read = true;
            recording.creationTime = valueOf(context, "creation_time");
            recording.phoneDate = valueOf(context, "com.apple.quicktime.creationdate");
            recording.title = valueOf(context, "title");
            recording.artist = valueOf(context, "artist");
            recording.albumArtist = valueOf(context, "album_artist");
            recording.album = valueOf(context, "album");
            recording.track = valueOf(context, "track");
            recording.disc = valueOf(context, "disc");
            recording.date = valueOf(context, "date");
            recording.genre = valueOf(context, "genre");
            // The length the container records, or its longest stream's;
            // nothing is decoded for it.
            if (context->duration != AV_NOPTS_VALUE && context->duration > 0)
                recording.durationMs = context->duration / (AV_TIME_BASE / 1000);
            if (recording.durationMs < 0)
                for (unsigned i = 0; i < context->nb_streams; ++i) {
                    const AVStream *stream = context->streams[i];
                    if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
                        recording.durationMs = std::max<long long>(recording.durationMs,
                                                                   av_rescale_q(stream->duration, stream->time_base, {1, 1000}));
                }
            // Most containers say the picture's size in their headers; for
            // an MPEG-4 Visual stream (Xvid, DivX) in MP4 it comes from its own
            // first frames, so those are looked at, and no more.
            const auto unsized = [context] {
                for (unsigned i = 0; i < context->nb_streams; ++i)
                    if (context->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && context->streams[i]->codecpar->width <= 0)
                        return true;
                return false;
            };
            if (unsized()) {
                context->max_analyze_duration = AV_TIME_BASE;
                avformat_find_stream_info(context, nullptr);
            }
            for (unsigned i = 0; i < context->nb_streams; ++i) {
                const AVCodecParameters *codec = context->streams[i]->codecpar;
                const bool picture = context->streams[i]->disposition & AV_DISPOSITION_ATTACHED_PIC;
                if (codec->codec_type == AVMEDIA_TYPE_VIDEO && !picture && codec->width > 0) {
                    recording.width = codec->width;
                    recording.height = codec->height;
                    break;
                }
            }
            avformat_close_input(&context);
        }
    }
    av_freep(&io->buffer);
    avio_context_free(&io);
    return read;
}

const ReaderModule::Api api = {ReaderModule::version, nullptr, readRecording, nullptr};

} // namespace

extern "C" __attribute__((visibility("default"))) const ReaderModule::Api *nomen_reader_module()
{
    return &api;
}
