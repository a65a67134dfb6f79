#include "measure/libav/DirectLibav.h"
#include "measure/libav/LibavFile.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <memory>
#include <utility>

namespace velmora {

namespace {

struct Freeing {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }

    void operator()(AVPacket* packet) const { av_packet_free(&packet); }

    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

using Bytes = std::span<const std::uint8_t>;
using Context = std::unique_ptr<AVCodecContext, Freeing>;

/// Null if there is no such decoder or it refuses `description`.
Context openDecoder(const char* name, Bytes description) {
    silenceLibav();
    const AVCodec* const codec = avcodec_find_decoder_by_name(name);
    Context context(avcodec_alloc_context3(codec));
    if (codec == nullptr || context == nullptr) {
        return nullptr;
    }
    context->extradata =
        static_cast<std::uint8_t*>(av_mallocz(description.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (context->extradata == nullptr) {
        return nullptr;
    }
    std::ranges::copy(description, context->extradata);
    context->extradata_size = static_cast<int>(description.size());
    return avcodec_open2(context.get(), codec, nullptr) == 0 ? std::move(context) : nullptr;
}

} // namespace

std::int64_t DirectLibav::decodedSamples(const char* decoder, Bytes description, Bytes packet) const {
    const Context context = openDecoder(decoder, description);
    const std::unique_ptr<AVPacket, Freeing> input(av_packet_alloc());
    const std::unique_ptr<AVFrame, Freeing> output(av_frame_alloc());
    if (context == nullptr || input == nullptr || output == nullptr ||
        av_new_packet(input.get(), static_cast<int>(packet.size())) != 0) {
        return 0;
    }
    std::ranges::copy(packet, input->data);
    std::int64_t samples = 0;
    avcodec_send_packet(context.get(), input.get());
    while (avcodec_receive_frame(context.get(), output.get()) == 0) {
        samples += output->nb_samples;
    }
    return samples;
}

} // namespace velmora
