#pragma once

// What libzip reads from and writes to. libzip calls one C function for all of it; here each source is an
// object. libzip tells only that a source failed; the exception that says why is kept here.

#include <zip.h>

#include <exception>
#include <memory>

namespace velmora {

/// One source. libzip owns it and uses it on the thread that writes the archive.
class ZipSource {
public:
    /// `failure` receives the exception of the first command that fails; it must outlive the source.
    explicit ZipSource(std::exception_ptr& failure)
        : m_failure(failure) {}

    ZipSource(const ZipSource&) = delete;
    ZipSource& operator=(const ZipSource&) = delete;
    virtual ~ZipSource() = default;

    /// Gives `source` to libzip. Null, with `source` deleted, when libzip has no memory for it.
    static zip_source_t* create(std::unique_ptr<ZipSource> source);

protected:
    /// The commands the source understands, a bit each: one of libzip's ZIP_SOURCE_SUPPORTS_...
    virtual zip_int64_t commands() const = 0;

    /// Carries out `command` on the `size` bytes at `data`, as zip_source_function(3) describes it, and
    /// returns what is described there. Throws to fail. Not called for the commands all sources share.
    virtual zip_int64_t answer(zip_source_cmd_t command, void* data, zip_uint64_t size) = 0;

private:
    static zip_int64_t call(void* source, void* data, zip_uint64_t size, zip_source_cmd_t command) noexcept;
    zip_int64_t answerSafely(zip_source_cmd_t command, void* data, zip_uint64_t size) noexcept;

    std::exception_ptr& m_failure;
};

} // namespace velmora
