#include <krender/frontend/Module.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace
{

using krFrontend::Module;

/// Sources that stand in no folder.
class Shelf final : public krFrontend::SourceReader
{
public:
    std::string read(const std::string& path, std::size_t limit, std::string& text) override
    {
        ++fReads[path];
        text = fFiles.at(path);
        return text.size() > limit ? "it is too long" : "";
    }
    bool exists(const std::string& path) override { return fFiles.contains(path); }

    std::map<std::string, std::string> fFiles;
    std::map<std::string, int> fReads;
};

std::vector<std::string> names(const Module& module)
{
    std::vector<std::string> found;
    for (const krFrontend::Diagnostic& diagnostic : module.diagnostics())
        found.emplace_back(diagnostic.name);
    return found;
}

const std::vector<std::string> gNothing;

TEST(Includes, AreFoundBesideTheirFileAndThenInTheFoldersInOrder)
{
    Shelf shelf;
    shelf.fFiles = {
        {"a/main.krs", "#include \"near.krs\"\n#include \"far.krs\"\nfloat m(float x) { return near(x) + far(x); }"},
        {"a/near.krs", "#include \"sub/deep.krs\"\nfloat near(float x) { return deep(x); }"},
        {"near.krs", "float other(float x);"},
        {"a/sub/deep.krs", "float deep(float x) { return x; }"},
        {"two/far.krs", "float far(float x) { return x; }"},
        {"three/far.krs", "float wrong(float x);"}};
    const Module module = Module::readFile("a/main.krs", {{"one", "two", "three"}, &shelf});
    EXPECT_EQ(names(module), gNothing);
    ASSERT_EQ(module.sources().fileCount(), 4u);
    EXPECT_EQ(module.sources().file(2).name(), "two/far.krs");
}

TEST(Includes, AreReadOnceHoweverTheyAreReached)
{
    Shelf shelf;
    shelf.fFiles = {{"m.krs", "#include \"a.krs\"\n#include \"./a.krs\"\n#include \"b.krs\"\n#include \"m.krs\"\n"},
                    {"a.krs", "#include \"b.krs\"\nconst float k = 1.0;"},
                    {"b.krs", "#include \"sub/../a.krs\"\nconst float j = k;"}};
    const Module module = Module::readFile("m.krs", {{}, &shelf});
    EXPECT_EQ(names(module), gNothing);
    EXPECT_EQ(shelf.fReads, (std::map<std::string, int>{{"a.krs", 1}, {"b.krs", 1}, {"m.krs", 1}}));
}

TEST(Includes, AreNamedInMessagesByTheirOwnFile)
{
    Shelf shelf;
    shelf.fFiles = {{"m.krs", "#include \"a.krs\"\n"}, {"a.krs", "float f(float x)\n{\n    return y;\n}"}};
    const Module module = Module::readFile("m.krs", {{}, &shelf});
    ASSERT_EQ(names(module), std::vector<std::string>{"unknown-name"});
    const krFrontend::SourceLocation at = module.sources().location(module.diagnostics()[0].range.begin);
    EXPECT_EQ(at.file, "a.krs");
    EXPECT_EQ(at.line, 3u);
    EXPECT_EQ(at.column, 12u);
}

TEST(Limits, HoldForFilesAndBytes)
{
    Shelf shelf;
    std::string all;
    for (unsigned i = 0; i <= krFrontend::kMostIncludes; ++i)
    {
        std::string name("f");
        name.append(std::to_string(i)).append(".krs");
        shelf.fFiles[name].append("const float k").append(std::to_string(i)).append(" = 1.0;");
        all.append("#include \"").append(name).append("\"\n");
    }
    shelf.fFiles["many.krs"] = all;
    EXPECT_EQ(names(Module::readFile("many.krs", {{}, &shelf})), std::vector<std::string>{"too-many-files"});

    shelf.fFiles["long.krs"] = std::string(krFrontend::kMostSourceBytes + 1, ' ');
    shelf.fFiles["half.krs"] = std::string(krFrontend::kMostSourceBytes / 2, ' ');
    shelf.fFiles["both.krs"] = "#include \"half.krs\"\n" + std::string(krFrontend::kMostSourceBytes / 2, ' ');
    EXPECT_EQ(names(Module::readFile("long.krs", {{}, &shelf})), std::vector<std::string>{"file-failed"});
    EXPECT_EQ(names(Module::readFile("both.krs", {{}, &shelf})), std::vector<std::string>{"include-failed"});
    EXPECT_EQ(names(Module::readText("long", shelf.fFiles["long.krs"])), std::vector<std::string>{"file-failed"});
    EXPECT_EQ(names(Module::readFile("/dev/zero")), std::vector<std::string>{"file-failed"});
}

TEST(Limits, CountTheErrorsThatAreNotKept)
{
    std::string text = "float f(float x)\n{\n";
    for (int i = 0; i < 500; ++i)
        text += "    x = y;\n";
    const Module module = Module::readText("m", text + "    return x;\n}\n");
    EXPECT_EQ(module.errorCount(), 500u);
    EXPECT_EQ(module.diagnostics().size(), 100u);
}

TEST(Text, MayBeginWithAByteOrderMarkAndHoldAnyBytes)
{
    EXPECT_EQ(names(Module::readText("m", "\xEF\xBB\xBF"
                                          "const float k = 1.0;")),
              gNothing);
    EXPECT_EQ(names(Module::readText("m", std::string("// \xff\x00\x80\nconst float k = 1.0;", 27))), gNothing);
    EXPECT_EQ(names(Module::readText("m", std::string("\x00\x01\xff", 3))),
              std::vector<std::string>{"unknown-character"});
    EXPECT_EQ(names(Module::readText("m", "")), gNothing);
}

} // namespace
