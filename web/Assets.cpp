#include "web/Assets.h"

#include "web/Gzip.h"
#include "web/Secrets.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <array>

namespace navrel {

namespace {

/// The first bytes of every gzip file.
constexpr std::string_view kCompressed = "\x1f\x8b";
constexpr std::string_view kIndex = "/index.html";
/// The whole app is a tenth of that.
constexpr std::size_t kMaximumAsset = std::size_t{1024} * 1024;
constexpr std::size_t kTagLength = 16;
constexpr std::size_t kShortestHash = 8;

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kTypes = {{
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".webmanifest", "application/manifest+json"},
    {".json", "application/json"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".ico", "image/x-icon"},
    {".txt", "text/plain; charset=utf-8"},
}};

std::string_view typeOf(std::string_view name) {
    const auto* const type = std::find_if(kTypes.begin(), kTypes.end(), [name](const auto& each) {
        return name.ends_with(each.first);
    });
    return type == kTypes.end() ? "application/octet-stream" : type->second;
}

/// Whether a name has a hash between its first part and its last: "app.1f3a9c02.js",
/// "app-1F3A9C02.js".
bool hasHash(std::string_view name) {
    const auto end = name.rfind('.');
    const auto start = name.find_last_of(".-", end == 0 ? 0 : end - 1);
    if (end == std::string_view::npos || start == std::string_view::npos || start >= end) {
        return false;
    }
    const std::string_view hash = name.substr(start + 1, end - start - 1);
    return hash.size() >= kShortestHash &&
           std::all_of(hash.begin(), hash.end(), [](char character) {
               return (character >= '0' && character <= '9') ||
                      (character >= 'a' && character <= 'z') ||
                      (character >= 'A' && character <= 'Z');
           });
}

} // namespace

Assets::Assets(const std::string& folder) {
    const QDir root(QString::fromStdString(folder));
    QDirIterator files(root.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly)) {
            add('/' + root.relativeFilePath(file.fileName()).toStdString(),
                file.readAll().toStdString());
        }
    }
}

void Assets::add(const std::string& path, std::string bytes) {
    Asset asset;
    asset.type = typeOf(path);
    asset.tag = '"' + digestOf(bytes).substr(0, kTagLength) + '"';
    asset.isImmutable = hasHash(path);
    if (bytes.starts_with(kCompressed)) {
        auto plain = gunzipped(bytes, kMaximumAsset);
        if (!plain) {
            return;
        }
        asset.compressed = std::make_shared<const std::string>(std::move(bytes));
        bytes = std::move(*plain);
    }
    asset.plain = std::make_shared<const std::string>(std::move(bytes));
    assets_[path == kIndex ? "/" : path] = std::move(asset);
}

HTTPResponse Assets::answer(std::string_view path, const HTTPRequest& request) const {
    const auto found = assets_.find(path);
    if (found == assets_.end()) {
        return path == "/" ? errorResponse(404, "This Navrel was built without its web app.")
                           : errorResponse(404, "There is nothing here.");
    }
    const Asset& asset = found->second;
    HTTPResponse response;
    response.fields = {
        {"ETag", asset.tag},
        {"Vary", "Accept-Encoding"},
        {"Cache-Control", asset.isImmutable ? "public, max-age=31536000, immutable" : "no-cache"}};
    if (request.ifNoneMatch == asset.tag) {
        response.status = 304;
        return response;
    }
    response.contentType = asset.type;
    response.body = asset.plain;
    if (asset.compressed && acceptsGzip(request.acceptEncoding)) {
        response.body = asset.compressed;
        response.fields.emplace_back("Content-Encoding", "gzip");
    }
    return response;
}

} // namespace navrel
