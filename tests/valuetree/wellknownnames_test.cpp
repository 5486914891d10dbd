#include "valuetree/wellknownnames.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

// Static objects of a program may use the names already.
const QString copiedAtStart = wellknown::kFREQUENCY;

#define SPECTREE_NAME(name) &wellknown::k##name,
#define SPECTREE_PATH(name, path) &wellknown::kPath_##name,
const std::vector<const QString *> kNames{SPECTREE_FOR_EACH_WELL_KNOWN_NAME(SPECTREE_NAME)};
const std::vector<const QString *> kPaths{SPECTREE_FOR_EACH_WELL_KNOWN_PATH(SPECTREE_PATH)};

TEST(WellKnownNames, AreAllThereOnceAndValid)
{
    const QRegularExpression name(QStringLiteral("^[A-Za-z_.: -][A-Za-z0-9_.: -]*$"));
    const QRegularExpression path(QStringLiteral("^(/[A-Za-z_.: -][A-Za-z0-9_.: -]*)+$"));
    EXPECT_EQ(kNames.size(), 521u);
    EXPECT_EQ(kPaths.size(), 18u);
    std::set<QString> texts;
    for (const auto &[list, form] : {std::pair{&kNames, name}, {&kPaths, path}})
        for (const QString *text : *list) {
            EXPECT_TRUE(form.match(*text).hasMatch()) << text->toStdString();
            EXPECT_TRUE(texts.insert(*text).second) << text->toStdString() << " stands twice";
        }
}

TEST(WellKnownNames, KeepTheirSpelling)
{
    using namespace wellknown;
    const std::pair<const QString &, const char *> cases[] = {
        {copiedAtStart, "FREQUENCY"},
        {kREC_LOADED, "REC_LOADED"}, // the first
        {kWFFM, "WFFM"},             // the last
        {kDEMODUALTIONFREQUENCY, "DEMODUALTIONFREQUENCY"},
        {kPath_Edit_MSEARCH, "/Edit/MSEARCH"},
    };
    for (const auto &[constant, text] : cases)
        EXPECT_EQ(constant, QLatin1String(text));
}

TEST(WellKnownNames, LiveInTheLibrarysOwnData)
{
    for (const QString *text : kNames) {
        const QString copy = *text;
        EXPECT_EQ(copy.constData(), text->constData());
        EXPECT_FALSE(text->isDetached()) << "a reference counted text could be freed";
        EXPECT_EQ(text->utf16()[text->size()], 0);
    }
}

} // namespace
