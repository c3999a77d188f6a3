#include "Platform/FileSystem.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <unistd.h>

namespace quillon::macos {

namespace {

class MacFileSystem final : public FileSystem {
public:
    std::optional<std::string> userLibraryDirectory() const override {
        NSArray<NSURL*>* const directories = [NSFileManager.defaultManager URLsForDirectory:NSLibraryDirectory
                                                                                  inDomains:NSUserDomainMask];
        return toOptionalString(directories.firstObject.path);
    }

    void createDirectory(const std::string& path, unsigned permissions) override {
        [NSFileManager.defaultManager createDirectoryAtPath:toNSString(path)
                                withIntermediateDirectories:YES
                                                 attributes:@{
                                                     NSFilePosixPermissions : @(permissions)
                                                 }
                                                      error:nil];
    }

    int openForAppending(const std::string& path, unsigned mode) override {
        return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW, mode);
    }

    void write(int descriptor, std::string_view bytes) override {
        [[maybe_unused]] const auto written = ::write(descriptor, bytes.data(), bytes.size());
    }

    void close(int descriptor) override { ::close(descriptor); }
};

} // namespace

std::unique_ptr<FileSystem> makeFileSystem() {
    return std::make_unique<MacFileSystem>();
}

} // namespace quillon::macos
