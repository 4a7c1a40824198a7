#pragma once

#include "support/dispatch/DispatchData.h"

#include <QString>
#include <QVariantMap>

#include <optional>

namespace navrel {

class Desktop;
class KZDataManager;

/// Answers the companion app's requests from the data manager: one function for each frame type.
/// It knows no channel, so that a request may come by any. Main thread.
class CommandService {
public:
    /// What the commands work on. Nothing is owned, everything lives longer than the service.
    struct World {
        KZDataManager& dataManager;
        Desktop& desktop;
        QString version; ///< the full one: "1.4.2"
    };

    explicit CommandService(World world);

    /// Whether frames of a type may be sent here: those with a command, and some that are ignored.
    /// A channel must be closed on any other type.
    static bool accepts(quint32 type);

    /// Does what a request asks for. Returns the reply's dictionary, or nothing where none is due:
    /// there are no error replies, and types without a command have none. A payload that holds no
    /// dictionary counts as none.
    std::optional<QVariantMap> answer(quint32 type,
                                      const std::optional<DispatchData>& payload) const;

private:
    World world_;
};

} // namespace navrel
