// velmora-libav: where libavformat and libavcodec run. The program starts it with a socket as standard input,
// and sends one end of a further socket for each child that it wants; a child serves that socket. The
// libraries are loaded once, before the first fork.

#include "measure/libav/LibavFile.h"
#include "measure/libav/Messages.h"
#include "measure/libav/Serving.h"
#include "measure/libav/Wall.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
}

#include <seccomp.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <string_view>

namespace {

using namespace velmora;

/// Ends with `helper`, whatever ends that.
void beChild(pid_t helper, const FileDescriptor& socket) {
    ::close(STDIN_FILENO); // the helper's own
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && ::getppid() == helper) {
        serve(socket);
    }
    ::_exit(0);
}

/// Until the program closes the socket, or ends, however it does.
void forkChildren() {
    std::signal(SIGCHLD, SIG_IGN); // nobody asks how a child ended
    const pid_t helper = ::getpid();
    std::array<std::uint8_t, 1> wish{};
    FileDescriptor socket;
    while (receiveMessage(STDIN_FILENO, wish, {}, &socket)) {
        if (socket && ::fork() == 0) {
            beChild(helper, socket);
        }
        socket = FileDescriptor();
    }
}

void printVersion(const char* library, unsigned version) {
    std::printf("%s %u.%u.%u\n", library, AV_VERSION_MAJOR(version), AV_VERSION_MINOR(version),
                AV_VERSION_MICRO(version));
}

/// For people: the libraries that are loaded.
void printVersions() {
    printVersion("libavformat", avformat_version());
    printVersion("libavcodec", avcodec_version());
    printVersion("libavutil", avutil_version());
    const scmp_version* const seccomp = seccomp_version();
    std::printf("libseccomp %u.%u.%u\n", seccomp->major, seccomp->minor, seccomp->micro);
}

} // namespace

int main(int count, char** words) {
    const std::string_view asked = count == 2 ? words[1] : "";
    if (asked == "--check-filter") {
        return checkFilter();
    }
    if (asked == "--versions") {
        printVersions();
        return 0;
    }
    silenceLibav();
    forkChildren();
    return 0;
}
