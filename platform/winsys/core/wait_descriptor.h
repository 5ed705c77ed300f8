// A file descriptor for event loops of other toolkits: readable exactly while a message is waiting.
// Independent of the message queue: `Update` is called after every change.
#pragma once

#include <chrono>
#include <optional>

namespace winsys::core
{

/// Closes the file descriptor at the end of its life; -1 is none.
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

    /// The descriptor to wait on; -1 if the system could not create one.
    [[nodiscard]] int Get() const { return set_.Get(); }

    /// Sets what makes the descriptor readable: a message that is already waiting, the time of the next timer
    /// (none for no timer), and the backend's descriptor (-1 for none).
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
