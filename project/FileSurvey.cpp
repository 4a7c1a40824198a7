#include "project/FileSurvey.h"

#include "support/files/FileDates.h"

#include <QHashFunctions>

namespace navrel {

std::optional<qint64> FileSurvey::modificationDate(const QByteArray& path) {
    if (!canNameAFile(path)) {
        return std::nullopt;
    }
    const auto known = dates_.find(path);
    if (known != dates_.end()) {
        return known->second;
    }
    const auto added = dates_.emplace(path, modificationDateOfFile(path)).first;
    asked_.push_back(&added->first);
    folderwise_.reset();
    return added->second;
}

bool FileSurvey::stillHolds() {
    if (!folderwise_) {
        std::vector<FolderwiseSurvey::Answer> answers;
        answers.reserve(asked_.size());
        for (const QByteArray* path : asked_) {
            answers.push_back({*path, dates_.find(*path)->second});
        }
        folderwise_.emplace(answers);
    }
    return folderwise_->stillHolds();
}

void FileSurvey::clear() {
    dates_.clear();
    asked_.clear();
    folderwise_.reset();
}

std::size_t FileSurvey::Hash::operator()(const QByteArray& path) const {
    return qHash(path, QHashSeed::globalSeed());
}

} // namespace navrel
