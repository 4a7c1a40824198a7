#include "app/ProgramVersion.h"
#include "project/store/ManagedObjectContext.h"
#include "tests/app/ServedProject.h"

#include <QDateTime>
#include <QVariantList>

#include <chrono>

namespace navrel {
namespace {

using std::chrono::milliseconds;

const QString kIdentifier = QStringLiteral("identifier");
const QString kItems = QStringLiteral("items");
const QString kPath = QStringLiteral("path");

class CommandServiceTest : public ServedProject {
protected:
    void SetUp() override {
        addFile("H", "Foo.h", "@interface Foo : Base\n- (void)run;\n@end\n");
        addFile("M", "Foo.m", "#pragma mark - Life\n- (void)run {\n}\n// navrel: Here\n");
        addFile("P", "Info.plist", "\n");
        addFile("U", "Upper.M", "- (void)run {\n}\n");
    }

    void addFile(const QByteArray& identifier, const QByteArray& name, const QByteArray& text) {
        project_.writeFile(QString::fromUtf8(name), text);
        project_.addEntry(identifier, name);
    }

    void launchActive() {
        launch();
        delegate_->activate();
        log_.take();
    }

    QString path(const char* name) const {
        return project_.folder() + QLatin1Char('/') + QLatin1String(name);
    }

    static QStringList names(const std::optional<QVariantMap>& reply, const QString& key) {
        QStringList result;
        for (const QVariant& item : reply.value_or(QVariantMap()).value(kItems).toList()) {
            result.append(item.toMap().value(key).toString());
        }
        return result;
    }

    /// A frame without a payload arrives, and has been dealt with when this returns.
    void receive(quint32 type, quint32 tag) {
        ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
        delegate_->ioFrameChannelDidReceiveFrameOfType(delegate_->connectedChannel(), type, tag,
                                                       nullptr);
    }
    quint32 tagOfNextReply() { return device_.nextFrame().value_or(TestDevice::Frame()).tag; }

    /// Sends a frame with a payload of any kind. The answer, or nothing when only the version
    /// request behind it is answered.
    std::optional<QVariantMap> askWithPayload(quint32 type, const QByteArray& payload) {
        constexpr quint32 kTag = 4'000'000;
        EXPECT_TRUE(device_.sendBytes(TestDevice::frame(type, kTag, payload) +
                                      TestDevice::frame(211, kTag + 1)));
        std::optional<QVariantMap> answer;
        while (const auto reply = device_.nextFrame()) {
            if (reply->tag == kTag + 1) {
                return answer;
            }
            answer = dictionaryOf(reply->payload);
        }
        ADD_FAILURE() << "the connection ended, or nothing was answered at all";
        return std::nullopt;
    }
};

// The gate.

TEST_F(CommandServiceTest, everyFrameBeforeActivationIsDroppedAlsoAVersionRequest) {
    launch();
    receive(211, 1);
    receive(202, 2);
    delegate_->activate();
    receive(211, 3);
    EXPECT_EQ(tagOfNextReply(), 3u);
}

TEST_F(CommandServiceTest, activationComesByItselfOneAndAHalfSecondsAfterStart) {
    launch();
    clock_.advance(milliseconds(1499));
    receive(211, 1);
    clock_.advance(milliseconds(1));
    receive(211, 2);
    EXPECT_EQ(tagOfNextReply(), 2u);
}

TEST_F(CommandServiceTest, aFrameOfLaterIsAnsweredThoughTheMainThreadWasBusyWhenActivationWasDue) {
    launch();
    clock_.advanceWithoutCalls(milliseconds(1500)); // in a pass over a large project
    receive(211, 1);
    EXPECT_EQ(tagOfNextReply(), 1u);
}

// The filter.

TEST_F(CommandServiceTest, anUnexpectedTypeIsLoggedAndClosesTheConnection) {
    launchActive();
    for (const quint32 type : {212u, 99u, 104u, 199u, 500u}) {
        ASSERT_TRUE(device_.sendBytes(TestDevice::frame(type, 1)));
        ASSERT_TRUE(device_.waitForEnd()) << type;
        ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() == nullptr; }));
        EXPECT_EQ(log_.messages().value(0),
                  QStringLiteral("Unexpected frame of type %1").arg(type));
        ASSERT_TRUE(waitForReconnection(device_));
        log_.take();
    }
}

TEST_F(CommandServiceTest, typesThatNothingAnswersAreIgnoredSilently) {
    launchActive();
    for (quint32 type = 100; type <= 103; ++type) {
        EXPECT_EQ(device_.ask(type), std::nullopt) << type;
    }
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(CommandServiceTest, typeZeroEndsTheStreamSilently) {
    launchActive();
    ASSERT_TRUE(device_.sendBytes(TestDevice::frame(0, 1)));
    EXPECT_TRUE(device_.waitForEnd());
    EXPECT_FALSE(log_.messages().join(QString()).contains(QStringLiteral("Unexpected")));
}

// Replies.

TEST_F(CommandServiceTest, everyReplyHasType500AndTheTagOfItsRequest) {
    launchActive();
    quint32 tag = 0xFFFFFF00;
    for (const quint32 type : {202u, 203u, 205u, 207u, 209u, 211u}) {
        ASSERT_TRUE(device_.sendBytes(TestDevice::frame(type, ++tag)));
        const auto reply = device_.nextFrame();
        ASSERT_TRUE(reply.has_value()) << type;
        EXPECT_EQ(reply->type, 500u);
        EXPECT_EQ(reply->tag, tag);
    }
}

TEST_F(CommandServiceTest, aReplyWithoutAChannelIsSilentlyNotSent) {
    launchActive();
    delegate_->setConnectedChannel(nullptr);
    delegate_->sendContent({{QStringLiteral("a"), 1}}, 1);
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(CommandServiceTest, aReplyThatCannotBeSentIsLoggedInTheSameWordsForAllTypes) {
    launchActive();
    delegate_->setConnectedChannel(PTChannel::init());
    delegate_->sendContent({{QStringLiteral("version"), QStringLiteral("1")}}, 1);
    ASSERT_TRUE(waitUntil([this] { return !log_.messages().isEmpty(); }));
    EXPECT_TRUE(log_.messages().at(0).startsWith(QStringLiteral("Failed to send fileTree: ")));
}

// 200: navigator of an identifier or a superclass.

TEST_F(CommandServiceTest, aKnownIdentifierIsAnsweredWithItsNavigator) {
    launchActive();
    const auto reply = device_.ask(200, {{kIdentifier, QStringLiteral("M")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("M"));
    EXPECT_EQ(reply->value(QStringLiteral("label")).toString(), QStringLiteral("Foo.m"));
}

TEST_F(CommandServiceTest, anUnknownIdentifierIsAnsweredWithTheRootNavigator) {
    launchActive();
    const auto reply = device_.ask(200, {{kIdentifier, QStringLiteral("STALE")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply, device_.ask(202));
    EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("MAIN"));
}

TEST_F(CommandServiceTest, anIdentifierThatIsNoTextIsUnknownAndWinsOverASuperclassToo) {
    launchActive();
    for (const QVariant& identifier :
         {QVariant(5), QVariant(QVariantList{1}), QVariant(QByteArray("M")), QVariant(QString())}) {
        const auto reply =
            device_.ask(200, {{kIdentifier, identifier},
                              {QStringLiteral("superclass"), QStringLiteral("Base")}});
        ASSERT_TRUE(reply.has_value()) << identifier.typeName();
        EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("MAIN"));
    }
}

TEST_F(CommandServiceTest, aSuperclassIsAnsweredWithTheFilesThatDeriveFromIt) {
    launchActive();
    const auto reply = device_.ask(200, {{QStringLiteral("superclass"), QStringLiteral("Base")}});
    EXPECT_EQ(names(reply, QStringLiteral("name")), QStringList{QStringLiteral("Foo.h")});
}

TEST_F(CommandServiceTest, anUnknownSuperclassHasNoFilesAndNoFallback) {
    launchActive();
    const auto reply = device_.ask(200, {{QStringLiteral("superclass"), QStringLiteral("None")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(QStringLiteral("superclass")).toString(), QStringLiteral("None"));
    EXPECT_TRUE(reply->value(kItems).toList().isEmpty());
}

TEST_F(CommandServiceTest, withBothKeysTheIdentifierWins) {
    launchActive();
    const auto reply = device_.ask(200, {{kIdentifier, QStringLiteral("M")},
                                         {QStringLiteral("superclass"), QStringLiteral("Base")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("M"));
}

TEST_F(CommandServiceTest, withNeitherKeyOrWithoutADictionaryNothingIsSent) {
    launchActive();
    EXPECT_EQ(device_.ask(200), std::nullopt);
    EXPECT_EQ(device_.ask(200, {{QStringLiteral("other"), 1}}), std::nullopt);
    EXPECT_EQ(device_.ask(200, {{QStringLiteral("superclass"), 5}}), std::nullopt);
    EXPECT_EQ(askWithPayload(200, "\xFF\xFE"), std::nullopt);
    EXPECT_EQ(askWithPayload(200, "(identifier, H)"), std::nullopt);
}

TEST_F(CommandServiceTest, aRequestInXMLOrOldStyleTextIsUnderstood) {
    launchActive();
    const auto text = askWithPayload(200, "{ identifier = M; }");
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(text->value(kIdentifier).toString(), QStringLiteral("M"));
    const auto xml = askWithPayload(
        200, "<plist version=\"1.0\"><dict><key>identifier</key><string>H</string></dict></plist>");
    ASSERT_TRUE(xml.has_value());
    EXPECT_EQ(xml->value(kIdentifier).toString(), QStringLiteral("H"));
}

// 201: open a file at a line.

TEST_F(CommandServiceTest, openingAFileIsNotAnswered) {
    launchActive();
    EXPECT_EQ(device_.ask(201, {{kPath, path("Foo.m")}}), std::nullopt);
    EXPECT_EQ(editor_.opened, (std::vector<FakeEditor::Opened>{{path("Foo.m"), std::nullopt}}));
}

TEST_F(CommandServiceTest, aLineIsPassedOnAsNumberAndAsText) {
    launchActive();
    device_.ask(201, {{kPath, path("Foo.m")}, {QStringLiteral("line"), 42}});
    device_.ask(201, {{kPath, path("Foo.m")}, {QStringLiteral("line"), QStringLiteral("42")}});
    EXPECT_EQ(editor_.opened,
              (std::vector<FakeEditor::Opened>{{path("Foo.m"), 42}, {path("Foo.m"), 42}}));
}

TEST_F(CommandServiceTest, openingWithoutAPathOpensNothing) {
    launchActive();
    EXPECT_EQ(askWithPayload(201, "garbage\xFF"), std::nullopt);
    EXPECT_TRUE(editor_.selectedLines.empty());
    EXPECT_EQ(device_.ask(201, {{QStringLiteral("line"), 3}}), std::nullopt);
    EXPECT_EQ(editor_.selectedLines, std::vector{3});
    EXPECT_TRUE(editor_.opened.empty());
}

// 202 to 207.

TEST_F(CommandServiceTest, theRootNavigatorListsTheMainGroup) {
    launchActive();
    const auto reply = device_.ask(202);
    EXPECT_EQ(names(reply, QStringLiteral("name")),
              (QStringList{QStringLiteral("Foo.h"), QStringLiteral("Foo.m"),
                           QStringLiteral("Info.plist"), QStringLiteral("Upper.M")}));
}

TEST_F(CommandServiceTest, withoutAProjectTheRootNavigatorIsNotAnswered) {
    launchWithoutProject();
    delegate_->activate();
    EXPECT_EQ(device_.ask(202), std::nullopt);
    EXPECT_EQ(device_.ask(200, {{kIdentifier, QStringLiteral("M")}}), std::nullopt);
}

TEST_F(CommandServiceTest, shortcutsAreThoseOfTheWholeProject) {
    launchActive();
    EXPECT_EQ(names(device_.ask(203), QStringLiteral("shortcut")),
              QStringList{QStringLiteral("Here")});
}

TEST_F(CommandServiceTest, elementsAreThoseOfTheFileAskedFor) {
    launchActive();
    const auto reply = device_.ask(204, {{kIdentifier, QStringLiteral("M")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(
        names(reply, QStringLiteral("name")),
        (QStringList{QStringLiteral("Life"), QStringLiteral("-run"), QStringLiteral("Here")}));
    EXPECT_EQ(reply->value(QStringLiteral("counterpart")).toString(), QStringLiteral("H"));
}

TEST_F(CommandServiceTest, elementsOfNothingAreNotAnswered) {
    launchActive();
    EXPECT_EQ(device_.ask(204), std::nullopt);
    EXPECT_EQ(device_.ask(204, {{kIdentifier, QStringLiteral("")}}), std::nullopt);
    EXPECT_EQ(device_.ask(204, {{kIdentifier, QStringLiteral("STALE")}}), std::nullopt);
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(CommandServiceTest, anEmptyIdentifierHasNoElementsEvenWhereAFileHasIt) {
    addFile("\"\"", "Empty.m", "- (void)run {\n}\n");
    launchActive();
    EXPECT_EQ(names(device_.ask(202), QStringLiteral("identifier")).count(QString()), 1);
    EXPECT_EQ(device_.ask(204, {{kIdentifier, QString()}}), std::nullopt);
}

TEST_F(CommandServiceTest, elementsOfAnyFileAreAnsweredWhenAskedForByIdentifier) {
    launchActive();
    EXPECT_TRUE(device_.ask(204, {{kIdentifier, QStringLiteral("P")}}).has_value());
}

TEST_F(CommandServiceTest, withAutoUpdateTheElementsAreThoseOfTheActiveFile) {
    launchActive();
    editor_.fileName = QStringLiteral("Foo.h");
    const auto reply =
        device_.ask(204, {{QStringLiteral("autoUpdate"), 1}, {kIdentifier, QStringLiteral("M")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("H"));
}

TEST_F(CommandServiceTest, withAutoUpdateAndNoActiveFileNothingIsSentAndThatIsLogged) {
    launchActive();
    EXPECT_EQ(device_.ask(204, {{QStringLiteral("autoUpdate"), true}}), std::nullopt);
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("ERROR: No active ID")});
}

TEST_F(CommandServiceTest, withAutoUpdateOnlySourceFilesInLowerCaseAreAnswered) {
    launchActive();
    for (const char* name : {"Info.plist", "Upper.M"}) {
        editor_.fileName = QLatin1String(name);
        EXPECT_EQ(device_.ask(204, {{QStringLiteral("autoUpdate"), 1}}), std::nullopt) << name;
    }
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(CommandServiceTest, withAutoUpdateEveryKindOfSourceFileIsAnsweredAndNoOther) {
    for (const char* name : {"a.c", "a.cpp", "a.mm", "a.swift", "a.cc", "a.hpp", "a.storyboard"}) {
        addFile(QByteArray("ID-") + name, name, "\n");
    }
    launchActive();
    const auto answered = [this](const char* name) {
        editor_.fileName = QLatin1String(name);
        const auto reply = device_.ask(204, {{QStringLiteral("autoUpdate"), 1}});
        return reply && reply->value(kPath).toString() == path(name);
    };
    for (const char* name : {"Foo.h", "Foo.m", "a.c", "a.cpp", "a.mm", "a.swift"}) {
        EXPECT_TRUE(answered(name)) << name;
    }
    for (const char* name : {"a.cc", "a.hpp", "a.storyboard"}) {
        editor_.fileName = QLatin1String(name);
        EXPECT_EQ(device_.ask(204, {{QStringLiteral("autoUpdate"), 1}}), std::nullopt) << name;
    }
}

TEST_F(CommandServiceTest, autoUpdateOffIsAsIfItWereAbsent) {
    launchActive();
    editor_.fileName = QStringLiteral("Foo.h");
    const auto reply =
        device_.ask(204, {{QStringLiteral("autoUpdate"), 0}, {kIdentifier, QStringLiteral("M")}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("M"));
}

TEST_F(CommandServiceTest, onlyABooleanOrANumberSwitchesAutoUpdateOn) {
    launchActive();
    editor_.fileName = QStringLiteral("Foo.h");
    for (const QVariant& flag :
         {QVariant(0.0), QVariant(QByteArray("1")), QVariant(QStringLiteral("1")),
          QVariant(QVariantList{1}), QVariant(QDateTime::currentDateTimeUtc())}) {
        const auto reply = device_.ask(
            204, {{QStringLiteral("autoUpdate"), flag}, {kIdentifier, QStringLiteral("M")}});
        ASSERT_TRUE(reply.has_value()) << flag.typeName();
        EXPECT_EQ(reply->value(kIdentifier).toString(), QStringLiteral("M")) << flag.typeName();
    }
}

TEST_F(CommandServiceTest, anExtensionThatGoesOnBehindANULIsNoSourceFiles) {
    launchActive();
    editor_.fileName = QStringLiteral("Foo.m");
    ManagedObjectContext& context = *manager_->managedObjectContext();
    context.lastObjectWithIdentifier("M")->setPath(QByteArray("/Foo.m\0plist", 12));
    EXPECT_EQ(device_.ask(204, {{QStringLiteral("autoUpdate"), 1}}), std::nullopt);
}

TEST_F(CommandServiceTest, fileTypesAreListedAndSwitched) {
    launchActive();
    const QString extension = QStringLiteral("extension");
    EXPECT_EQ(names(device_.ask(205), extension),
              (QStringList{QStringLiteral("M"), QStringLiteral("h"), QStringLiteral("m"),
                           QStringLiteral("plist")}));
    const auto switched =
        device_.ask(206, {{extension, QStringLiteral("m")}, {QStringLiteral("allowed"), 0}});
    EXPECT_EQ(switched, device_.ask(205));
    EXPECT_EQ(names(switched, QStringLiteral("allowed")),
              (QStringList{QStringLiteral("1"), QStringLiteral("1"), QStringLiteral("0"),
                           QStringLiteral("1")}));
}

TEST_F(CommandServiceTest, aSwitchWithoutADictionaryDoesNothing) {
    launchActive();
    EXPECT_EQ(askWithPayload(206, "text"), std::nullopt);
    EXPECT_EQ(askWithPayload(206, ""), std::nullopt);
}

TEST_F(CommandServiceTest, aSwitchOfAnUnknownExtensionChangesNothingAndListsAll) {
    launchActive();
    const auto before = device_.ask(205);
    EXPECT_EQ(device_.ask(206, {{QStringLiteral("extension"), QStringLiteral("zzz")},
                                {QStringLiteral("allowed"), 0}}),
              before);
}

TEST_F(CommandServiceTest, superclassesAreListed) {
    launchActive();
    const auto reply = device_.ask(207);
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(*reply,
              (QVariantMap{{QStringLiteral("title"), QStringLiteral("Superclass navigator")},
                           {kItems, QVariantList{QStringLiteral("Base")}}}));
}

// 208 to 211.

TEST_F(CommandServiceTest, aFileForTheDesktopIsHandedOnWithoutAReply) {
    launchActive();
    EXPECT_EQ(device_.ask(208, {{kPath, QStringLiteral("/a b/$(id).pdf")}}), std::nullopt);
    EXPECT_EQ(askWithPayload(208, "text"), std::nullopt);
    EXPECT_EQ(desktop_.openedFiles, QStringList{QStringLiteral("/a b/$(id).pdf")});
}

TEST_F(CommandServiceTest, theProjectIsItsFolder) {
    launchActive();
    EXPECT_EQ(device_.ask(209), (QVariantMap{{QStringLiteral("project"), project_.folder()}}));
}

TEST_F(CommandServiceTest, withoutAProjectItsFolderIsNotAnswered) {
    launchWithoutProject();
    delegate_->activate();
    EXPECT_EQ(device_.ask(209), std::nullopt);
}

TEST_F(CommandServiceTest, anyDictionaryAsksThePersonForAProject) {
    launchActive();
    EXPECT_EQ(device_.ask(210, {{QStringLiteral("any"), 1}}), std::nullopt);
    EXPECT_EQ(desktop_.panelTitles,
              QStringList{QStringLiteral("Select *.xcodeproj file to use with Navrel")});
    EXPECT_FALSE(manager_->automaticProjectSelection());

    EXPECT_EQ(askWithPayload(210, "text"), std::nullopt);
    EXPECT_EQ(desktop_.panelTitles.size(), 1);
}

TEST_F(CommandServiceTest, theVersionIsMajorAndMinor) {
    for (const auto& [version, answer] :
         {std::pair("1.4.2", "1.4"), std::pair("2.0", "2.0"), std::pair("3.1.7", "3.1"),
          std::pair("5", "5"), std::pair("1.2.3.4", "1.2")}) {
        EXPECT_EQ(majorMinorVersion(QLatin1String(version)), QLatin1String(answer));
    }
    launchActive();
    EXPECT_EQ(device_.ask(211), (QVariantMap{{QStringLiteral("version"), QStringLiteral("1.4")}}));
}

TEST_F(CommandServiceTest, theVersionReplyIsTheseBytes) {
    launchActive();
    ASSERT_TRUE(device_.sendBytes(QByteArray::fromHex("00000001"     // version of the frame format
                                                      "000000d3"     // type 211
                                                      "00000007"     // tag
                                                      "00000000"))); // no payload
    const auto reply = device_.nextFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->payload.toHex(),
              "62706c6973743030"   // bplist00
              "d10102"             // a dictionary: key object 1, value object 2
              "5776657273696f6e"   // "version"
              "53312e34"           // "1.4"
              "080b13"             // where the objects begin
              "0000000000000101"   // offsets and references of 1 byte
              "0000000000000003"   // 3 objects
              "0000000000000000"   // the outermost is object 0
              "0000000000000017"); // the offsets begin at byte 23
}

} // namespace
} // namespace navrel
