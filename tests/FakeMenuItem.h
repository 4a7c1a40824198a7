#pragma once

#include "project/MenuItem.h"

#include <QString>

#include <optional>

namespace navrel {

/// A menu entry that keeps the title and the state that it was given.
class FakeMenuItem final : public MenuItem {
public:
    void setTitle(const QString& newTitle) override { title = newTitle; }
    void setChecked(bool isChecked) override { checked = isChecked; }

    std::optional<QString> title;
    std::optional<bool> checked;
};

} // namespace navrel
