#include "export/ZipSource.h"

namespace velmora {

zip_source_t* ZipSource::create(std::unique_ptr<ZipSource> source) {
    zip_source_t* result = zip_source_function_create(&ZipSource::call, source.get(), nullptr);
    if (result != nullptr) {
        static_cast<void>(source.release()); // ZIP_SOURCE_FREE deletes it
    }
    return result;
}

zip_int64_t ZipSource::call(void* source, void* data, zip_uint64_t size, zip_source_cmd_t command) noexcept {
    auto* self = static_cast<ZipSource*>(source);
    switch (command) {
    case ZIP_SOURCE_SUPPORTS:
        return self->commands();
    case ZIP_SOURCE_FREE:
        delete self;
        return 0;
    case ZIP_SOURCE_ERROR: {
        zip_error_t error;
        zip_error_init_with_code(&error, ZIP_ER_INTERNAL);
        return zip_error_to_data(&error, data, size);
    }
    default:
        return self->answerSafely(command, data, size);
    }
}

zip_int64_t ZipSource::answerSafely(zip_source_cmd_t command, void* data, zip_uint64_t size) noexcept {
    try {
        return answer(command, data, size);
    } catch (...) {
        if (!m_failure) {
            m_failure = std::current_exception();
        }
        return -1;
    }
}

} // namespace velmora
