#include "ContractTest.h"

#include "Platform/FileSystem.h"
#include "Platform/UserDefaults.h"

namespace quillon::contract {
namespace {

using UserDefaultsContract = ContractTest;

class FileSystemContract : public ContractTest {
protected:
    FileSystem& files() { return desktop().fileSystem(); }

    void append(const std::string& path, std::string_view text) {
        const int descriptor = files().openForAppending(path, 0600);
        ASSERT_GE(descriptor, 0);
        files().write(descriptor, text);
        files().close(descriptor);
    }

    const std::string library = files().userLibraryDirectory().value();
    const std::string directory = library + "/Contract/Inner";
    const std::string path = directory + "/lines.log";
};

TEST_F(UserDefaultsContract, AnUnknownKeyHasNoValue) {
    EXPECT_EQ(desktop().userDefaults().object("contractUnknown"), std::nullopt);
}

TEST_F(UserDefaultsContract, AValueComesBackWithTheTypeItWasStoredWith) {
    const std::vector<PropertyValue> values{
        true,
        false,
        std::int64_t{1},
        std::int64_t{0},
        std::int64_t{-9007199254740993},
        0.05,
        30.0,
        std::string("testo « con segni »"),
        std::string(),
        PropertyData{std::byte{0}, std::byte{255}, std::byte{10}},
    };
    auto& defaults = desktop().userDefaults();
    for (const auto& value : values) {
        defaults.set("contractValue", value);
        EXPECT_EQ(defaults.object("contractValue"), std::optional(value)) << "type " << value.index();
    }
    defaults.remove("contractValue");
}

TEST_F(UserDefaultsContract, ARemovedValueIsGoneAndTheOthersStay) {
    auto& defaults = desktop().userDefaults();
    defaults.set("contractOne", std::int64_t{1});
    defaults.set("contractTwo", std::int64_t{2});
    defaults.remove("contractOne");
    defaults.remove("contractUnknown");
    EXPECT_EQ(defaults.object("contractOne"), std::nullopt);
    EXPECT_EQ(defaults.object("contractTwo"), std::optional<PropertyValue>(std::int64_t{2}));
    defaults.remove("contractTwo");
}

TEST_F(FileSystemContract, TheLibraryDirectoryIsAbsolute) {
    EXPECT_TRUE(library.starts_with("/"));
}

TEST_F(FileSystemContract, DirectoriesAreCreatedWithThoseAboveThem) {
    files().createDirectory(directory, 0700);
    EXPECT_EQ(world->permissions(directory), std::optional(0700U));
}

TEST_F(FileSystemContract, CreatingAnExistingDirectoryChangesNothing) {
    files().createDirectory(directory, 0700);
    files().createDirectory(directory, 0755);
    EXPECT_EQ(world->permissions(directory), std::optional(0700U));
}

TEST_F(FileSystemContract, AFileIsCreatedWithItsModeAndGrowsAtItsEnd) {
    files().createDirectory(directory, 0700);
    append(path, "one\n");
    append(path, "two\n");
    EXPECT_EQ(world->fileContent(path), std::optional<std::string>("one\ntwo\n"));
    EXPECT_EQ(world->permissions(path), std::optional(0600U));
}

TEST_F(FileSystemContract, ASymbolicLinkIsNotFollowed) {
    files().createDirectory(directory, 0700);
    const auto target = directory + "/target.log";
    append(target, "kept\n");
    world->makeSymbolicLink(target, path);
    EXPECT_LT(files().openForAppending(path, 0600), 0);
    EXPECT_EQ(world->fileContent(target), std::optional<std::string>("kept\n"));
}

TEST_F(FileSystemContract, AFileInAMissingDirectoryIsNotOpened) {
    EXPECT_LT(files().openForAppending(library + "/Contract/Missing/lines.log", 0600), 0);
}

} // namespace
} // namespace quillon::contract
