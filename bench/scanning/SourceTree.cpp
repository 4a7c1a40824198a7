#include "bench/scanning/SourceTree.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace navrel::bench {

namespace {

constexpr qint64 kTreeSize = 45'000'000;
constexpr unsigned kSeed = 20240607;

/// Writes sources of the kinds that projects hold, from a fixed sequence. As in public projects, a
/// file has some 10 KB and a kilobyte some one finding.
class SourceWriter {
public:
    QByteArray header(const QByteArray& name) {
        QByteArray text = licence(name) + "#import <Foundation/Foundation.h>\n\n";
        text += name.contains('+')
                    ? "@interface " + word() + " (Additions)\n\n"
                    : "@interface " + name + " : " + word() + " <" + word() + ">\n\n";
        for (unsigned count = 2 + random_() % 30; count > 0; --count) {
            text += "\n/// " + sentence() + "\n/// " + sentence() + "\n";
            text += random_() % 3 == 0 ? property() : method() + ";\n";
        }
        return text + "\n@end\n";
    }

    QByteArray implementation(const QByteArray& name) {
        QByteArray text =
            licence(name) + "#import \"" + name + ".h\"\n\n@implementation " + name + "\n\n";
        for (unsigned count = 2 + random_() % 20; count > 0; --count) {
            text += random_() % 6 == 0 ? "#pragma mark - " + word() + "\n\n" : QByteArray();
            text += method() + (random_() % 3 == 0 ? "\n{\n" : " {\n");
            text += body() + "}\n\n";
        }
        return text + "@end\n";
    }

    QByteArray plainC(const QByteArray& name) {
        QByteArray text = licence(name) + "#include \"" + name + ".h\"\n#include <stdio.h>\n\n";
        for (unsigned count = 2 + random_() % 20; count > 0; --count) {
            text += comment("") + "static int " + word() + "(const char *" + word() + ", int " +
                    word() + ")\n{\n" + body() + "    return 0;\n}\n\n";
        }
        return text;
    }

    QByteArray swift(const QByteArray& name) {
        QByteArray text =
            licence(name) + "import Foundation\n\nfinal class " + name + ": " + word() + " {\n";
        for (unsigned count = 2 + random_() % 20; count > 0; --count) {
            text += random_() % 6 == 0 ? "    // MARK: - " + word() + "\n\n" : QByteArray();
            text += "    private var " + word() + " = " + word() + "()\n\n";
            text += comment("    ") + "    func " + word() + "(_ " + word() + ": " + word() +
                    ") {\n" + body() + "    }\n\n";
        }
        return text + "}\n";
    }

    unsigned choice(unsigned count) { return static_cast<unsigned>(random_() % count); }

private:
    QByteArray licence(const QByteArray& name) {
        return "/*\n * " + name +
               "\n *\n * Permission is granted to use this file for any purpose, with or without\n"
               " * changes, as long as this notice stays where it is. There is no warranty.\n"
               " */\n\n";
    }

    QByteArray comment(const QByteArray& indent) {
        return random_() % 3 == 0 ? indent + "// " + sentence() + "\n" : QByteArray();
    }

    QByteArray property() {
        return "@property (nonatomic, strong) " + word() + " *" + word() + ";\n";
    }

    QByteArray method() {
        QByteArray head = "- (void)" + word();
        for (unsigned count = choice(3); count > 0; --count) {
            head += ":(" + word() + " *)" + word() + " " + word();
        }
        return head;
    }

    QByteArray body() {
        QByteArray text;
        for (unsigned count = 6 + choice(42); count > 0; --count) {
            text += line();
        }
        for (; open_ > 0; --open_) {
            text += "    }\n";
        }
        return text;
    }

    QByteArray line() {
        switch (choice(8)) {
        case 0:
            return "    // " + sentence() + "\n";
        case 1:
            ++open_;
            return "    if (" + word() + " != nil && [" + word() + " " + word() + "]) {\n";
        case 2:
            if (open_ == 0) {
                return "\n";
            }
            --open_;
            return "    }\n\n";
        case 3:
            return "        " + word() + " = " + word() + "->" + word() +
                   (choice(6) == 0 ? " + 1;\n" : ";\n");
        case 4:
            return "    [self." + word() + " " + word() + ":@\"" + word() + "\" " + word() + ":" +
                   word() + "];\n";
        case 5:
            return "    NSString *" + word() + " = [NSString stringWithFormat:@\"%@-%d\", " +
                   word() + ", " + word() + (choice(6) == 0 ? " - 1];\n" : "];\n");
        case 6:
            ++open_;
            return "    for (int i = 0; i < " + word() + "; i++) {\n        " + word() +
                   "[i] = " + word() + "(i);\n";
        default:
            return "        return " + word() + "(" + word() + ", " + word() + ");\n";
        }
    }

    QByteArray sentence() {
        QByteArray text = word();
        for (unsigned count = 4 + choice(8); count > 0; --count) {
            text += " " + word();
        }
        return text;
    }

    QByteArray word() {
        static constexpr std::array kWords = {
            "Session",   "view",   "tableController", "index",  "name",     "UIView",
            "delegate",  "value",  "currentItem",     "path",   "NSObject", "stringForKey",
            "updateAll", "size",   "didChange",       "buffer", "object",   "lastModified",
            "theme",     "socket", "preferences",     "window", "key",      "superview"};
        return kWords[choice(kWords.size())];
    }

    std::mt19937 random_{kSeed};
    unsigned open_ = 0; ///< braces of the body at hand: those of real sources are closed
};

bool isSource(const QString& path) {
    static const QStringList kExtensions = {
        QStringLiteral("h"), QStringLiteral("m"),  QStringLiteral("swift"),
        QStringLiteral("c"), QStringLiteral("mm"), QStringLiteral("cpp"),
    };
    return kExtensions.contains(QFileInfo(path).suffix());
}

} // namespace

SourceTree::SourceTree() {
    const QString given = qEnvironmentVariable("NAVREL_BENCH_SOURCES");
    if (given.isEmpty()) {
        makeUp();
    } else {
        addFolder(given);
    }
    std::printf("%zu source files, %.1f MB\n", paths_.size(), double(size_) / 1e6);
    if (paths_.empty()) {
        std::fprintf(stderr, "no source files to measure with\n");
        std::exit(EXIT_FAILURE);
    }
}

void SourceTree::addFolder(const QString& folder) {
    QDirIterator found(folder, QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        const QString path = found.next();
        if (isSource(path)) {
            paths_.push_back(QFile::encodeName(path));
            size_ += QFileInfo(path).size();
        }
    }
}

void SourceTree::makeUp() {
    SourceWriter writer;
    for (int number = 0; size_ < kTreeSize; ++number) {
        const QByteArray name = "Source" + QByteArray::number(number);
        switch (writer.choice(8)) {
        case 0:
        case 1:
        case 2:
            write(name + ".h", writer.header(name));
            write(name + ".m", writer.implementation(name));
            break;
        case 3:
        case 4:
            write(name + ".swift", writer.swift(name));
            break;
        case 5:
            write(name + "+Additions.h", writer.header(name + "+Additions"));
            write(name + "+Additions.mm", writer.implementation(name));
            break;
        default:
            write(name + ".c", writer.plainC(name));
            break;
        }
    }
}

void SourceTree::write(const QByteArray& name, const QByteArray& text) {
    const QString path = folder_.filePath(QFile::decodeName(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::exit(EXIT_FAILURE);
    }
    paths_.push_back(QFile::encodeName(path));
    size_ += text.size();
}

} // namespace navrel::bench
