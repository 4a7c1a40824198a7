// codemap_outline [FILE...]: prints the outline of each file as one line of JSON, for tools that
// compare many files with what others find in them. Without arguments it reads the files' names
// from standard input, one a line.

#include "codemap/SourceOutline.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

using namespace navrel;

QString stringOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QJsonObject viewOf(const Outline& outline, const Symbol& symbol) {
    return {{QStringLiteral("kind"), stringOf(nameOf(symbol.kind))},
            {QStringLiteral("name"), stringOf(outline.nameOf(symbol))},
            {QStringLiteral("line"), qint64(symbol.line)},
            {QStringLiteral("endLine"), qint64(symbol.endLine)},
            {QStringLiteral("depth"), symbol.depth}};
}

void printOutlineOf(const std::string& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string bytes = contents.str();
    const std::string extension = std::filesystem::path(path).extension().string();
    const Language language = languageOfExtension(extension.empty() ? "" : extension.substr(1));
    const Outline outline = outlineOfSource(language, decodedSource(bytes).value_or(bytes));
    QJsonArray symbols;
    for (const Symbol& symbol : outline.symbols()) {
        symbols.append(viewOf(outline, symbol));
    }
    const QJsonObject view{{QStringLiteral("path"), stringOf(path)},
                           {QStringLiteral("symbols"), symbols}};
    std::cout << QJsonDocument(view).toJson(QJsonDocument::Compact).constData() << '\n';
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        for (int index = 1; index < argc; ++index) {
            printOutlineOf(argv[index]);
        }
        return 0;
    }
    for (std::string path; std::getline(std::cin, path);) {
        printOutlineOf(path);
    }
    return 0;
}
