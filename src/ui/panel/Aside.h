#pragma once

// Work that may block for ever, such as a look at a folder on a server that does not answer: it runs on a
// thread of its own, which nobody waits for.

#include <QObject>

#include <functional>
#include <memory>

namespace velmora {

/// Created, used and destroyed on the main thread, whose event loop runs.
class Aside : public QObject {
    Q_OBJECT

public:
    using Answer = std::function<void()>;

    explicit Aside(QObject* parent = nullptr);
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;
    ~Aside() override;

    /// Runs `work` on another thread, then on the main thread the answer that it returned: unless it was
    /// forgotten meanwhile, or this has gone. Of several works only the last one's answer runs. `work` must
    /// use nothing that may go before it ends.
    void run(std::function<Answer()> work);

    /// No answer that is still to come is run.
    void forget();

    /// Whether an answer is still to come.
    bool busy() const { return m_busy; }

private:
    struct Link;

    void take(int number, const Answer& answer);

    std::shared_ptr<Link> m_link;
    int m_last = 0; ///< the number of the last work
    bool m_busy = false;
};

} // namespace velmora
