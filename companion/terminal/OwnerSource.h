#pragma once

#include "companion/link/OwnerLink.h"
#include "companion/terminal/CodeSource.h"

namespace navrel {

/// Everything that Navrel has, over its owner's socket.
class OwnerSource final : public CodeSource {
public:
    /// The link must outlive it.
    explicit OwnerSource(const OwnerLink& link) : link_(link) {}

    bool hasCodeMap() const override { return true; }
    CodeAnswer project() override;
    CodeAnswer version() override { return state(); }
    CodeAnswer tree() override;
    CodeAnswer outline(const std::string& file) override;
    CodeAnswer types() override;
    CodeAnswer shortcuts() override;
    CodeAnswer fileTypes() override;
    CodeAnswer switchFileType(const std::string& extension, bool allowed) override;
    CodeAnswer open(const std::string& file, const std::string& path, std::uint32_t line,
                    std::uint32_t column) override;
    CodeAnswer search(const std::string& text) override;
    CodeAnswer notes() override;
    CodeAnswer changes() override;
    CodeAnswer back() override;
    CodeAnswer state() override;
    CodeAnswer pairing() override;
    CodeAnswer devices() override;
    CodeAnswer forget(const std::string& device) override;

private:
    CodeAnswer ask(const char* method, const std::string& target,
                   const std::string& body = {}) const;
    CodeAnswer outcomeOf(const char* target, const std::string& body) const;

    const OwnerLink& link_;
};

} // namespace navrel
