#include "disk/read_input.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "disk/descriptor.h"

namespace keplo {

namespace {

constexpr std::size_t kBlock = 65536;  // bytes

void Require(bool done) {
  if (!done) throw std::system_error(errno, std::generic_category());
}

/// An input, closed on destruction unless it is standard input.
class Input {
 public:
  // Without O_NONBLOCK, opening a pipe would wait for a writer.
  explicit Input(const std::string& path)
      : opened_(path == "-" ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
        number_(path == "-" ? STDIN_FILENO : opened_.Number()) {
    Require(number_ >= 0);
  }

  /// @return the number of bytes read; 0 at the end
  std::size_t Read(char* bytes, std::size_t most) const {
    while (true) {
      pollfd waiting{number_, POLLIN, 0};
      Require(poll(&waiting, 1, -1) >= 0);
      const ssize_t got = read(number_, bytes, most);
      if (got < 0 && errno == EAGAIN) continue;
      Require(got >= 0);
      return static_cast<std::size_t>(got);
    }
  }

 private:
  Descriptor opened_;
  int number_;
};

}  // namespace

std::string ReadInput(const std::string& path, std::size_t most) {
  const Input input(path);
  std::string content;
  std::array<char, kBlock> block{};
  while (content.size() <= most) {
    const std::size_t got = input.Read(block.data(), std::min(block.size(), most + 1 - content.size()));
    if (got == 0) break;
    content.append(block.data(), got);
  }
  return content;
}

}  // namespace keplo
