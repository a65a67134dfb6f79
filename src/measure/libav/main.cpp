// velmora-libav: where libavformat and libavcodec run. The program starts it with a socket as standard input,
// and sends one end of a further socket for each child that it wants; a child serves that socket. The
// libraries are loaded once, before the first fork.

#include "measure/libav/LibavFile.h"
#include "measure/libav/Messages.h"
#include "measure/libav/Serving.h"
#include "measure/libav/Wall.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <csignal>
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

} // namespace

int main(int count, char** words) {
    if (count == 2 && std::string_view(words[1]) == "--check-filter") {
        return checkFilter();
    }
    silenceLibav();
    forkChildren();
    return 0;
}
