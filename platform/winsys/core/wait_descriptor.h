// The descriptor that event loops of other toolkits wait on: readable exactly while a message is there. It
// knows nothing of messages; the layer tells it what is so after every change.
#pragma once

#include <chrono>
#include <optional>

namespace winsys::core
{

/// A file descriptor that is closed with its object; -1 is none.
class UniqueDescriptor
{
  public:
    explicit UniqueDescriptor(int descriptor) : descriptor_(descriptor) {}
    UniqueDescriptor(const UniqueDescriptor&) = delete;
    UniqueDescriptor& operator=(const UniqueDescriptor&) = delete;
    ~UniqueDescriptor();

    [[nodiscard]] int Get() const { return descriptor_; }

  private:
    int descriptor_;
};

class WaitDescriptor
{
  public:
    WaitDescriptor();

    /// The descriptor to wait on; -1 where the system has none to give.
    [[nodiscard]] int Get() const { return set_.Get(); }

    /// Says what there is to wait for: a message that waits already, the time of the next timer, and the
    /// backend's descriptor (-1 for none).
    void Update(bool message_waits, std::optional<std::chrono::steady_clock::time_point> due,
                int backend_descriptor);

  private:
    void Watch(int descriptor) const;

    UniqueDescriptor set_;
    UniqueDescriptor event_;
    UniqueDescriptor timer_;
    bool signalled_ = false;
    std::optional<std::chrono::steady_clock::time_point> due_;
    int backend_descriptor_ = -1;
};

} // namespace winsys::core
