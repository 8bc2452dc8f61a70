#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace keplo {

/// A file that gets its name only once it is whole, so that a program that is killed leaves nothing behind.
/// Its operations throw a Failure with the errno and a text that names the file.
class NewDatabaseFile {
 public:
  /// @param target the file to be; its folder must exist. What a new file may be used for is up to the umask.
  explicit NewDatabaseFile(const std::filesystem::path& target);
  ~NewDatabaseFile();
  NewDatabaseFile(const NewDatabaseFile&) = delete;
  NewDatabaseFile& operator=(const NewDatabaseFile&) = delete;

  void Write(std::string_view bytes);
  /// Puts the file on the disk under its name, never in place of one that exists.
  void TakePlace();

 private:
  class Descriptor {
   public:
    Descriptor() = default;
    ~Descriptor() { Open(-1); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// @return false if there is nothing open at the number
    bool Open(int number);
    int Number() const { return number_; }

   private:
    int number_ = -1;
  };

  bool TakeName() const;

  std::filesystem::path target_;
  std::string temporaryName_;  // empty for a file without a name
  Descriptor folder_;
  Descriptor file_;
};

/// @throws Failure with EEXIST and a text that tells the user to move the file away
[[noreturn]] void RefuseToReplace(const std::filesystem::path& path);

}  // namespace keplo
