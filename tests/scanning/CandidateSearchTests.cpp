#include "scanning/search/CandidateSearch.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <vector>

namespace navrel {
namespace {

/// Whether the first place of the text is a likely candidate.
bool isLikely(Candidates candidates, QByteArray text) {
    text.append(kCandidateLookahead, '\0');
    std::vector<quint16> offsets = {0};
    return keepLikelyCandidates(candidates, text.constData(), offsets.data(), 1) == 1;
}

TEST(CandidateSearch, fourBytesTellCommentsWithAKeywordFromOthers) {
    for (const auto kind : {Candidates::ObjectiveC, Candidates::Header, Candidates::Swift}) {
        EXPECT_TRUE(isLikely(kind, "// MARK:"));
        EXPECT_TRUE(isLikely(kind, "//mark:"));
        EXPECT_TRUE(isLikely(kind, "//  Warning:"));
        EXPECT_TRUE(isLikely(kind, "// navrel:"));
        EXPECT_TRUE(isLikely(kind, "//Navrel:"));
        EXPECT_FALSE(isLikely(kind, "// Copyright"));
        EXPECT_FALSE(isLikely(kind, "/////////"));
        EXPECT_FALSE(isLikely(kind, "//more"));
        EXPECT_FALSE(isLikely(kind, "//"));
    }
}

TEST(CandidateSearch, fourBytesTellTheBeginningsOfObjectiveC) {
    for (const char* text : {"- (void)", "-(a)", "+  (a)", "-(\xC5\xBF)", "@property", "@DYNAMIC",
                             "@interface", "#pragma mark", "#warning"}) {
        EXPECT_TRUE(isLikely(Candidates::ObjectiveC, text)) << text;
    }
    for (const char* text : {"- 1", "@private", "@import", "@implementation", "#pretty", "#what"}) {
        EXPECT_FALSE(isLikely(Candidates::ObjectiveC, text)) << text;
    }
}

TEST(CandidateSearch, fourBytesTellTheBeginningsOfSwift) {
    for (const char* text : {"class", "CLASS", "cla\xC3\x9F", "cla\xC5\xBFs", "cla\xE1\xBA\x9E",
                             "func", "var", "let", "varx", "#warning"}) {
        EXPECT_TRUE(isLikely(Candidates::Swift, text)) << text;
    }
    for (const char* text : {"clap", "fund", "vac", "lea", "#if", "- (a)"}) {
        EXPECT_FALSE(isLikely(Candidates::Swift, text)) << text;
    }
}

TEST(CandidateSearch, theLikelyPlacesKeepTheirOrder) {
    const QByteArray text = "- a- (b// xy@prop\0\0\0";
    std::vector<quint16> offsets = {0, 3, 7, 12};
    ASSERT_EQ(keepLikelyCandidates(Candidates::Header, text.constData(), offsets.data(), 4), 2);
    EXPECT_EQ(offsets[0], 3);
    EXPECT_EQ(offsets[1], 12);
}

} // namespace
} // namespace navrel
