#pragma once

#include <QString>

namespace navrel {

/// While it lives, the process has an ordinary user's rights: the superuser's becomes `nobody`, who
/// is given a folder and the files in it. Nothing changes for anybody else.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const QString& folder);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool wasSuperuser_;
};

} // namespace navrel
