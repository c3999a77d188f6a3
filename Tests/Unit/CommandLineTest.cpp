#include "CommandLine.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Arguments = std::vector<std::string>;

template <class Request>
Request parsed(const Arguments& arguments) {
    auto request = CommandLine::parse(arguments);
    if (auto* found = std::get_if<Request>(&request)) {
        return std::move(*found);
    }
    ADD_FAILURE() << "the request has the kind " << request.index();
    return {};
}

TEST(CommandLineTest, WithoutArgumentsTheApplicationRuns) {
    parsed<CommandLine::Run>({});
}

TEST(CommandLineTest, TheInputRoutingIsChosenAtTheStart) {
    EXPECT_EQ(parsed<CommandLine::Run>({}).inputRouting, InputRouting::forward);
    EXPECT_EQ(parsed<CommandLine::Run>({"--input-routing=forward"}).inputRouting, InputRouting::forward);
    EXPECT_EQ(parsed<CommandLine::Run>({"--input-routing=scroll"}).inputRouting, InputRouting::scroll);
}

TEST(CommandLineTest, AnInputRoutingThatDoesNotExistIsAUsageError) {
    for (const auto* argument : {"--input-routing", "--input-routing=", "--input-routing=Scroll", "--input-routing=27",
                                 "--input-routing=scroll "}) {
        EXPECT_EQ(parsed<CommandLine::UsageError>({argument}).text,
                  "«--input-routing» vuole =forward o =scroll: \"quillon --help\" mostra l'uso")
            << argument;
    }
    parsed<CommandLine::UsageError>({"--input-routing", "scroll"});
    parsed<CommandLine::UsageError>({"--input-routing=scroll", "pin"});
    EXPECT_EQ(parsed<CommandLine::UsageError>({"--input-routings=scroll"}).text,
              "Opzione sconosciuta «--input-routings=scroll»: \"quillon --help\" mostra l'uso");
}

TEST(CommandLineTest, Options) {
    parsed<CommandLine::ShowHelp>({"--help"});
    parsed<CommandLine::ShowHelp>({"-h"});
    parsed<CommandLine::ShowVersion>({"--version"});
    parsed<CommandLine::ListWindows>({"--list-windows"});
}

TEST(CommandLineTest, AnOptionStandsAlone) {
    for (const auto* option : {"--help", "-h", "--version", "--list-windows"}) {
        EXPECT_EQ(parsed<CommandLine::UsageError>({option, "altro"}).text,
                  "«" + std::string(option) + "» non vuole argomenti: \"quillon --help\" mostra l'uso");
    }
}

TEST(CommandLineTest, ScriptCommandsKeepTheirArguments) {
    for (const auto* verb : {"pin", "unpin", "toggle", "list", "menu", "settings", "about", "status"}) {
        const auto command = parsed<CommandLine::Script>({verb, "front", "altro"}).command;
        EXPECT_EQ(command.verb, verb);
        EXPECT_EQ(command.arguments, (Arguments{"front", "altro"}));
        EXPECT_TRUE(parsed<CommandLine::Script>({verb}).command.arguments.empty());
    }
}

TEST(CommandLineTest, Defaults) {
    EXPECT_EQ(parsed<CommandLine::ReadDefault>({"defaults", "read", "captureRate"}).key, "captureRate");
    EXPECT_EQ(parsed<CommandLine::DeleteDefault>({"defaults", "delete", "captureRate"}).key, "captureRate");
    const auto written = parsed<CommandLine::WriteDefault>({"defaults", "write", "captureRate", "60"});
    EXPECT_EQ(written.key, "captureRate");
    EXPECT_EQ(written.value, "60");
}

TEST(CommandLineTest, DefaultsWithTheWrongWordsIsAUsageError) {
    for (const auto& words : {Arguments{},
                              {"read"},
                              {"read", "a", "b"},
                              {"write", "a"},
                              {"write", "a", "b", "c"},
                              {"delete"},
                              {"delete", "a", "b"},
                              {"list", "a"}}) {
        Arguments arguments{"defaults"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        EXPECT_EQ(parsed<CommandLine::UsageError>(arguments).text,
                  "«defaults» vuole read CHIAVE, write CHIAVE VALORE o delete CHIAVE: \"quillon --help\" mostra l'uso");
    }
}

TEST(CommandLineTest, AnythingElseIsAUsageErrorThatNamesIt) {
    EXPECT_EQ(parsed<CommandLine::UsageError>({"--fissa"}).text,
              "Opzione sconosciuta «--fissa»: \"quillon --help\" mostra l'uso");
    EXPECT_EQ(parsed<CommandLine::UsageError>({"fissa"}).text,
              "Comando sconosciuto «fissa»: \"quillon --help\" mostra l'uso");
    EXPECT_EQ(parsed<CommandLine::UsageError>({""}).text, "Comando sconosciuto «»: \"quillon --help\" mostra l'uso");
}

TEST(CommandLineTest, TheHelpNamesEveryCommandAndOption) {
    for (const auto* word : {"pin ", "unpin ", "toggle ", "list ", "menu ", "settings ", "about ", "status ",
                             "defaults read", "defaults write", "defaults delete", "--input-routing=forward",
                             "--input-routing=scroll", "--list-windows", "--help", "--version"}) {
        EXPECT_NE(CommandLine::helpText().find(word), std::string_view::npos) << word;
    }
}

} // namespace
} // namespace quillon
