#pragma once

#include "web/HTTPMessage.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace navrel {

/// The web app's files, read once. They hold nothing of any project. Immutable; any thread.
class Assets {
public:
    /// Reads a folder, for the program `kAssetFolder`. What is a gzip file is served as what it
    /// holds, as it is where the browser takes gzip; `index.html` is the page of "/". The name of a
    /// file with a hash in it ("app.1f3a9c02.js") changes with its bytes: browsers keep it for
    /// good.
    explicit Assets(const std::string& folder);

    /// Of the path of a GET request; 404 for what is not there.
    HTTPResponse answer(std::string_view path, const HTTPRequest& request) const;

private:
    struct Asset {
        std::string type;
        std::string tag;
        std::shared_ptr<const std::string> plain;
        std::shared_ptr<const std::string> compressed; ///< null for what is compressed by itself
        bool isImmutable = false;
    };

    void add(const std::string& path, std::string bytes);

    std::map<std::string, Asset, std::less<>> assets_; ///< by path
};

/// Where the program's resources hold the web app.
inline constexpr const char* kAssetFolder = ":/browser";

} // namespace navrel
