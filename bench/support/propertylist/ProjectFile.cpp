#include "bench/support/propertylist/ProjectFile.h"

#include <QList>

#include <random>

namespace navrel::bench {

namespace {

constexpr unsigned kSeed = 20240501;
constexpr int kChildrenOfAGroup = 12;

struct File {
    QByteArray name;
    QByteArray type;
    QByteArray reference; // identifiers
    QByteArray build;
};

/// Writes the sections of a project, with names and identifiers from a fixed sequence.
class ProjectWriter {
public:
    explicit ProjectWriter(qsizetype size) {
        qsizetype expected = 0;
        while (expected < size) {
            files_.append(makeFile());
            expected += kBytesOfAFile + 6 * files_.last().name.size();
        }
    }

    QByteArray write() {
        text_ = "// !$*UTF8*$!\n{\n\tarchiveVersion = 1;\n\tclasses = {\n\t};\n"
                "\tobjectVersion = 46;\n\tobjects = {\n";
        writeBuildFiles();
        writeFileReferences();
        writeGroups();
        writeSources();
        writeConfigurations();
        return text_ + "\t};\n\trootObject = " + makeIdentifier() + " /* Project object */;\n}\n";
    }

private:
    static constexpr qsizetype kBytesOfAFile = 385; // what a file takes, beside six times its name

    void writeBuildFiles() {
        begin("PBXBuildFile");
        for (const File& file : files_) {
            text_ += "\t\t" + file.build + " /* " + file.name +
                     " in Sources */ = {isa = PBXBuildFile; fileRef = " + file.reference + " /* " +
                     file.name + " */; };\n";
        }
        end("PBXBuildFile");
    }

    void writeFileReferences() {
        begin("PBXFileReference");
        for (const File& file : files_) {
            const bool isQuoted = file.name.contains('+');
            const QByteArray path = isQuoted ? '"' + file.name + '"' : file.name;
            text_ += "\t\t" + file.reference + " /* " + file.name +
                     " */ = {isa = PBXFileReference; fileEncoding = 4; lastKnownFileType = " +
                     file.type + "; path = " + path + "; sourceTree = \"<group>\"; };\n";
        }
        end("PBXFileReference");
    }

    void writeGroups() {
        begin("PBXGroup");
        for (qsizetype i = 0; i < files_.size(); i += kChildrenOfAGroup) {
            const QByteArray name = makeWord();
            text_ += "\t\t" + makeIdentifier() + " /* " + name +
                     " */ = {\n\t\t\tisa = PBXGroup;\n\t\t\tchildren = (\n";
            for (const File& file : files_.mid(i, kChildrenOfAGroup)) {
                text_ += "\t\t\t\t" + file.reference + " /* " + file.name + " */,\n";
            }
            text_ +=
                "\t\t\t);\n\t\t\tpath = " + name + ";\n\t\t\tsourceTree = \"<group>\";\n\t\t};\n";
        }
        end("PBXGroup");
    }

    void writeSources() {
        begin("PBXSourcesBuildPhase");
        text_ += "\t\t" + makeIdentifier() +
                 " /* Sources */ = {\n\t\t\tisa = PBXSourcesBuildPhase;\n\t\t\tfiles = (\n";
        for (const File& file : files_) {
            text_ += "\t\t\t\t" + file.build + " /* " + file.name + " in Sources */,\n";
        }
        text_ += "\t\t\t);\n\t\t\trunOnlyForDeploymentPostprocessing = 0;\n\t\t};\n";
        end("PBXSourcesBuildPhase");
    }

    void writeConfigurations() {
        begin("XCBuildConfiguration");
        for (qsizetype i = 0; i < files_.size(); i += 40) {
            text_ += "\t\t" + makeIdentifier() +
                     " /* Debug */ = {\n\t\t\tisa = XCBuildConfiguration;\n"
                     "\t\t\tbuildSettings = {\n\t\t\t\tALWAYS_SEARCH_USER_PATHS = NO;\n"
                     "\t\t\t\tCODE_SIGN_IDENTITY = \"-\";\n\t\t\t\tHEADER_SEARCH_PATHS = (\n"
                     "\t\t\t\t\t\"$(inherited)\",\n\t\t\t\t\t\"\\\"$(SRCROOT)/" +
                     makeWord() +
                     "\\\"\",\n\t\t\t\t);\n\t\t\t\tMACOSX_DEPLOYMENT_TARGET = 10.15;\n"
                     "\t\t\t};\n\t\t\tname = Debug;\n\t\t};\n";
        }
        end("XCBuildConfiguration");
    }

    void begin(const char* section) {
        text_ += QByteArray("\n/* Begin ") + section + " section */\n";
    }
    void end(const char* section) { text_ += QByteArray("/* End ") + section + " section */\n"; }

    File makeFile() {
        static const QList<std::pair<QByteArray, QByteArray>> kinds = {
            {".m", "sourcecode.c.objc"},    {".h", "sourcecode.c.h"},
            {".swift", "sourcecode.swift"}, {".mm", "sourcecode.cpp.objcpp"},
            {".png", "image.png"},          {"+Additions.m", "sourcecode.c.objc"}};
        QByteArray name;
        for (unsigned words = 1 + random_() % 3; words > 0; --words) {
            name += makeWord();
        }
        const auto& [ending, type] = kinds.at(static_cast<qsizetype>(random_() % 6));
        return {name + ending, type, makeIdentifier(), makeIdentifier()};
    }

    QByteArray makeWord() {
        static const QList<QByteArray> words = {"Session", "View",    "Controller",  "Table",
                                                "Split",   "Text",    "Preferences", "Socket",
                                                "Color",   "Profile", "Window",      "Key"};
        return words.at(static_cast<qsizetype>(random_() % 12)) +
               QByteArray::number(random_() % 1000);
    }

    QByteArray makeIdentifier() {
        QByteArray identifier;
        for (int i = 0; i < 3; ++i) {
            identifier += QByteArray::number(random_(), 16).toUpper().rightJustified(8, '0');
        }
        return identifier;
    }

    std::mt19937 random_{kSeed};
    QList<File> files_;
    QByteArray text_;
};

} // namespace

QByteArray makeProjectFile(qsizetype size) {
    return ProjectWriter(size).write();
}

} // namespace navrel::bench
