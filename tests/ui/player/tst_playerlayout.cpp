#include "tests/support/ContextTranslator.h"
#include "tests/support/SoundServer.h"
#include "tests/ui/player/PlayerTestAccess.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QMetaEnum>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionFrame>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;
using Access = AudioPlayerWidgetTestAccess;

namespace {

constexpr int unlimited = 16777215;
/** The spacing that the style gives. */
constexpr int ofStyle = -1;

QString PolicyName(QSizePolicy::Policy policy)
{
    return QLatin1StringView(QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(policy));
}

/** "btnMute", "volumeControlsHLayout", "10 x 20 Fixed, Minimum"; a widget without a name by its class. */
QString Described(QLayoutItem& item)
{
    if (const QSpacerItem* spacer = item.spacerItem()) {
        const QSize size = spacer->sizeHint();
        return u"%1 x %2 %3, %4"_s.arg(size.width())
            .arg(size.height())
            .arg(PolicyName(spacer->sizePolicy().horizontalPolicy()),
                 PolicyName(spacer->sizePolicy().verticalPolicy()));
    }
    const QObject* object = item.widget() ? static_cast<QObject*>(item.widget()) : item.layout();
    return object->objectName().isEmpty() ? QString::fromLatin1(object->metaObject()->className())
                                          : object->objectName();
}

QString OrderOf(const QLayout& layout)
{
    QStringList items;
    for (int i = 0; i < layout.count(); ++i) {
        items << Described(*layout.itemAt(i));
    }
    return items.join(u" | "_s);
}

QImage Picture(const QIcon& icon)
{
    return icon.pixmap(64, 64).toImage();
}

/** The picture of "Play" is that of "vantoraudioPlay_day.svg". */
QImage ResourcePicture(const QString& name)
{
    return Picture(QIcon(u":/Resources/vantoraudio"_s + name + u"_day.svg"_s));
}

/** The controls that show. */
QList<QWidget*> ControlsOf(const QWidget& player)
{
    QList<QWidget*> controls;
    for (QWidget* child : player.findChildren<QWidget*>()) {
        const bool isControl = qobject_cast<QLabel*>(child) || qobject_cast<QAbstractButton*>(child) ||
                               qobject_cast<QLineEdit*>(child) || qobject_cast<QComboBox*>(child) ||
                               qobject_cast<QSlider*>(child);
        if (isControl && child->isVisible()) {
            controls.append(child);
        }
    }
    return controls;
}

bool HasRoom(const QLineEdit& field)
{
    QStyleOptionFrame option;
    option.initFrom(&field);
    option.lineWidth = field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &field);
    const QSize contents = field.style()->subElementRect(QStyle::SE_LineEditContents, &option, &field).size();
    // The field itself leaves two pixels free at each side.
    const QSize text = field.fontMetrics().size(Qt::TextSingleLine, u"00:00:00.000"_s) + QSize(4, 0);
    return contents.expandedTo(text) == contents;
}

bool HasRoom(const QWidget& control)
{
    if (const auto* const field = qobject_cast<const QLineEdit*>(&control)) {
        return HasRoom(*field);
    }
    if (const auto* const button = qobject_cast<const QPushButton*>(&control);
        button && button->text().isEmpty()) {
        return button->size().expandedTo(button->iconSize()) == button->size();
    }
    return control.size().expandedTo(control.minimumSizeHint()) == control.size();
}

/** Empty when every control has room for what it shows, within the player and beside the others. */
QString FirstThatIsCut(const QWidget& player)
{
    QList<QRect> places;
    for (const QWidget* control : ControlsOf(player)) {
        const QRect place(control->mapTo(&player, QPoint(0, 0)), control->size());
        const bool isCovered = std::any_of(places.cbegin(), places.cend(),
                                           [&place](const QRect& other) { return other.intersects(place); });
        if (isCovered || !player.rect().contains(place) || !HasRoom(*control)) {
            return control->objectName();
        }
        places.append(place);
    }
    return {};
}

QString NameOfParent(const QWidget& widget)
{
    return widget.parentWidget()->objectName();
}

} // namespace

/** The tree of children that style sheets of host programs address. */
class PlayerLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void eachChildHasItsNameClassAndParent_data();
    void eachChildHasItsNameClassAndParent();
    void thereAreNoOtherChildren();
    void eachLayoutHoldsItsItems_data();
    void eachLayoutHoldsItsItems();
    void eachChildHasItsSize_data();
    void eachChildHasItsSize();
    void framesArePlain_data();
    void framesArePlain();
    void onlyTheEditingFrameHasASizePolicyOfItsOwn();
    void labelsShowTheirTexts_data();
    void labelsShowTheirTexts();
    void buttonsAreAsTheyShouldBe_data();
    void buttonsAreAsTheyShouldBe();
    void buttonsShowTheirIcons_data();
    void buttonsShowTheirIcons();
    void everyIconIsAnother();
    void timeFieldsAreMaskedAndShareOneValidator_data();
    void timeFieldsAreMaskedAndShareOneValidator();
    void theTotalFieldIsReadOnlyAndStartsWithAComma();
    void theValidatorKnowsTimesOfADay_data();
    void theValidatorKnowsTimesOfADay();
    void theValidatorHasNoParent();
    void theVolumeSliderKeepsTheDefaultRange();
    void startsEmpty_data();
    void startsEmpty();
    void startsOutsideEditModeWithoutAHint();
    void takesKeysByClickAndTab();
    void ownsPlayerAndWaveform();
    void screenReadersFindANameForEachControl();
    void textsAreTranslatedInTheContextOfTheClass();

    void flexibleSizesHaveRoomForEveryFont_data();
    void flexibleSizesHaveRoomForEveryFont();
    void rowsBreakWhereThePlayerIsNarrow();
    void sizesFollowTheFont();

private:
    QWidget* Child(const QString& name) const { return m_player->findChild<QWidget*>(name); }
    template<typename Class>
    Class* Child(const QString& name) const
    {
        return m_player->findChild<Class*>(name);
    }

    std::unique_ptr<RecordingPlayerWidget> m_player;
};

void PlayerLayoutTest::initTestCase()
{
    m_player = std::make_unique<RecordingPlayerWidget>();
    m_player->setObjectName(u"the player"_s);
}

void PlayerLayoutTest::cleanupTestCase()
{
    m_player.reset();
}

void PlayerLayoutTest::eachChildHasItsNameClassAndParent_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("parent");
    const auto add = [](const char* name, const char* className, const QString& parent) {
        QTest::newRow(name) << QByteArray(className) << parent;
    };
    add("frmWaveForm", "QFrame", u"the player"_s);
    add("frmAudioControls", "QFrame", u"the player"_s);
    for (const char* name : {"btnMute", "btnStop", "btnPlayPause", "btnLoop", "btnSettings"}) {
        add(name, "QPushButton", u"frmAudioControls"_s);
    }
    add("hSliderVolume", "QSlider", u"frmAudioControls"_s);
    add("lblCurrentPos", "QLabel", u"frmAudioControls"_s);
    add("edCurrentPosition", "QLineEdit", u"frmAudioControls"_s);
    add("lblHeaderTotal", "QLabel", u"frmAudioControls"_s);
    add("edTotalDuration", "QLineEdit", u"frmAudioControls"_s);

    add("frmEditingControls", "QFrame", u"the player"_s);
    for (const char* name : {"lblAudio", "lblChannel", "lblSelection", "lblStart", "lblEnd"}) {
        add(name, "QLabel", u"frmEditingControls"_s);
    }
    for (const char* name : {"hLineLeftTop", "hLineLeftBottom", "hLineRightTop", "hLineRightBottom",
                             "frmSelectionStart", "frmSelectionEnd"}) {
        add(name, "QFrame", u"frmEditingControls"_s);
    }
    add("btnLoadFile", "QPushButton", u"frmEditingControls"_s);
    add("cmbboxChannelSelector", "QComboBox", u"frmEditingControls"_s);
    add("edSelectionStart", "QLineEdit", u"frmSelectionStart"_s);
    add("btnDecSelectionStart", "QPushButton", u"frmSelectionStart"_s);
    add("btnIncSelectionStart", "QPushButton", u"frmSelectionStart"_s);
    add("edSelectionEnd", "QLineEdit", u"frmSelectionEnd"_s);
    add("btnDecSelectionEnd", "QPushButton", u"frmSelectionEnd"_s);
    add("btnIncSelectionEnd", "QPushButton", u"frmSelectionEnd"_s);

    add("frmAudioPlayerHint", "QFrame", u"the player"_s);
    add("lblAudioPlayerHint", "QLabel", u"frmAudioPlayerHint"_s);
    add("hLineHintBottom", "QFrame", u"frmAudioPlayerHint"_s);
}

void PlayerLayoutTest::eachChildHasItsNameClassAndParent()
{
    const QWidget* child = Child(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(child);
    QTEST(QByteArray(child->metaObject()->className()), "className");
    QTEST(NameOfParent(*child), "parent");
}

void PlayerLayoutTest::thereAreNoOtherChildren()
{
    QStringList names;
    const auto collect = [&names](const QWidget& parent) {
        for (const QWidget* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            names << child->objectName();
        }
    };
    collect(*m_player);
    for (const char* frame : {"frmAudioControls", "frmEditingControls", "frmSelectionStart", "frmSelectionEnd",
                              "frmAudioPlayerHint"}) {
        collect(*Child(QString::fromLatin1(frame)));
    }
    // As many as the rows above; the waveform has no name and stands alone in its frame.
    QCOMPARE(names.size(), 35);
    QVERIFY(!names.contains(QString()));
    QCOMPARE(Child(u"frmWaveForm"_s)->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
}

void PlayerLayoutTest::eachLayoutHoldsItsItems_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("owner");
    QTest::addColumn<QMargins>("margins");
    QTest::addColumn<int>("spacing");
    QTest::addColumn<QString>("items");
    const QByteArray row("QHBoxLayout");
    const QByteArray column("QVBoxLayout");
    QTest::newRow("mainLayout") << column << u"the player"_s << QMargins(0, 0, 0, 6) << 0
                                << u"frmWaveForm | frmAudioControls | frmEditingControls | frmAudioPlayerHint"_s;
    QTest::newRow("waveFormHBoxLayout") << row << u"frmWaveForm"_s << QMargins(0, 0, 0, 6) << 6
                                        << u"vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget"_s;
    QTest::newRow("audioControlsHLayout")
        << row << u"frmAudioControls"_s << QMargins(30, 0, 20, 0) << ofStyle
        << u"volumeControlsHLayout | 0 x 20 Expanding, Minimum | playerContolsHLayout | "
           "0 x 20 Expanding, Minimum | lblCurrentPos | edCurrentPosition | 10 x 16 Preferred, Minimum | "
           "lblHeaderTotal | edTotalDuration"_s;
    QTest::newRow("volumeControlsHLayout")
        << row << u"audioControlsHLayout"_s << QMargins() << ofStyle << u"btnMute | hSliderVolume"_s;
    QTest::newRow("playerContolsHLayout") << row << u"audioControlsHLayout"_s << QMargins() << ofStyle
                                          << u"btnStop | btnPlayPause | btnLoop | btnSettings"_s;
    QTest::newRow("editingControlshLayout") << row << u"frmEditingControls"_s << QMargins(30, 0, 20, 0) << ofStyle
                                            << u"controlsLeftVLayout | controlsRightVLayout"_s;
    QTest::newRow("controlsLeftVLayout")
        << column << u"editingControlshLayout"_s << QMargins(0, 0, 6, 0) << ofStyle
        << u"lblAudio | hLineLeftTop | controlsLeftHLayout | hLineLeftBottom"_s;
    QTest::newRow("controlsLeftHLayout")
        << row << u"controlsLeftVLayout"_s << QMargins(6, 2, 6, 2) << ofStyle
        << u"btnLoadFile | 10 x 20 Fixed, Minimum | lblChannel | cmbboxChannelSelector | "
           "40 x 20 Expanding, Minimum"_s;
    QTest::newRow("controlsRightVLayout")
        << column << u"editingControlshLayout"_s << QMargins(6, 0, 0, 0) << ofStyle
        << u"lblSelection | hLineRightTop | controlsRightHLayout | hLineRightBottom"_s;
    QTest::newRow("controlsRightHLayout")
        << row << u"controlsRightVLayout"_s << QMargins(6, 2, 6, 2) << ofStyle
        << u"lblStart | frmSelectionStart | lblEnd | frmSelectionEnd | 20 x 20 Expanding, Minimum"_s;
    QTest::newRow("selectionStartHLayout")
        << row << u"frmSelectionStart"_s << QMargins() << ofStyle
        << u"edSelectionStart | btnDecSelectionStart | btnIncSelectionStart | 20 x 20 Expanding, Minimum"_s;
    QTest::newRow("selectionEndHLayout")
        << row << u"frmSelectionEnd"_s << QMargins() << ofStyle
        << u"edSelectionEnd | btnDecSelectionEnd | btnIncSelectionEnd | 20 x 20 Expanding, Minimum"_s;
    QTest::newRow("audioPlayerhintVLayout") << column << u"frmAudioPlayerHint"_s << QMargins(30, 0, 20, 0)
                                            << ofStyle << u"lblAudioPlayerHint | hLineHintBottom"_s;
}

void PlayerLayoutTest::eachLayoutHoldsItsItems()
{
    QFETCH(QByteArray, className);
    QFETCH(int, spacing);
    const auto* layout = Child<QBoxLayout>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(layout);
    QCOMPARE(QByteArray(layout->metaObject()->className()), className);
    QTEST(layout->parent()->objectName(), "owner");
    QTEST(layout->contentsMargins(), "margins");
    QTEST(OrderOf(*layout), "items");
    const auto metric =
        className == "QHBoxLayout" ? QStyle::PM_LayoutHorizontalSpacing : QStyle::PM_LayoutVerticalSpacing;
    QCOMPARE(layout->spacing(), spacing == ofStyle ? m_player->style()->pixelMetric(metric) : spacing);
}

void PlayerLayoutTest::eachChildHasItsSize_data()
{
    QTest::addColumn<QSize>("smallest");
    QTest::addColumn<QSize>("largest");
    const auto fixed = [](const char* name, int width, int height) {
        QTest::newRow(name) << QSize(width, height) << QSize(width, height);
    };
    const auto fixedHeight = [](const char* name, int height) {
        QTest::newRow(name) << QSize(0, height) << QSize(unlimited, height);
    };
    const auto free = [](const char* name) { QTest::newRow(name) << QSize(0, 0) << QSize(unlimited, unlimited); };
    free("frmWaveForm");
    QTest::newRow("frmAudioControls") << QSize(0, 0) << QSize(unlimited, 30);
    fixed("btnMute", 28, 20);
    fixed("hSliderVolume", 80, 20);
    fixed("btnStop", 28, 22);
    fixed("btnPlayPause", 28, 22);
    fixed("btnLoop", 28, 22);
    fixed("btnSettings", 28, 22);
    fixedHeight("lblCurrentPos", 20);
    fixed("edCurrentPosition", 80, 20);
    fixedHeight("lblHeaderTotal", 20);
    fixed("edTotalDuration", 80, 20);
    free("frmEditingControls");
    fixed("lblAudio", 386, 23);
    free("btnLoadFile");
    free("lblChannel");
    fixed("cmbboxChannelSelector", 158, 23);
    fixed("lblSelection", 386, 23);
    free("lblStart");
    free("lblEnd");
    free("frmSelectionStart");
    free("frmSelectionEnd");
    fixed("edSelectionStart", 106, 22);
    fixed("btnDecSelectionStart", 20, 22);
    fixed("btnIncSelectionStart", 20, 22);
    fixed("edSelectionEnd", 106, 22);
    fixed("btnDecSelectionEnd", 20, 22);
    fixed("btnIncSelectionEnd", 20, 22);
    fixedHeight("frmAudioPlayerHint", 26);
    fixedHeight("lblAudioPlayerHint", 22);
}

void PlayerLayoutTest::eachChildHasItsSize()
{
    const QWidget* child = Child(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(child);
    QTEST(child->minimumSize(), "smallest");
    QTEST(child->maximumSize(), "largest");
}

void PlayerLayoutTest::framesArePlain_data()
{
    QTest::addColumn<QFrame::Shape>("shape");
    for (const char* name : {"frmWaveForm", "frmAudioControls", "frmEditingControls", "frmSelectionStart",
                             "frmSelectionEnd", "frmAudioPlayerHint"}) {
        QTest::newRow(name) << QFrame::NoFrame;
    }
    for (const char* name :
         {"hLineLeftTop", "hLineLeftBottom", "hLineRightTop", "hLineRightBottom", "hLineHintBottom"}) {
        QTest::newRow(name) << QFrame::HLine;
    }
}

void PlayerLayoutTest::framesArePlain()
{
    const auto* frame = Child<QFrame>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(frame);
    QTEST(frame->frameShape(), "shape");
    QCOMPARE(frame->frameShadow(), QFrame::Plain);
}

void PlayerLayoutTest::onlyTheEditingFrameHasASizePolicyOfItsOwn()
{
    const auto policyOf = [this](const char* name) {
        const QSizePolicy policy = Child(QString::fromLatin1(name))->sizePolicy();
        return u"%1, %2"_s.arg(PolicyName(policy.horizontalPolicy()), PolicyName(policy.verticalPolicy()));
    };
    QCOMPARE(policyOf("frmEditingControls"), u"Expanding, Fixed"_s);
    for (const char* name :
         {"frmWaveForm", "frmAudioControls", "frmSelectionStart", "frmSelectionEnd", "frmAudioPlayerHint"}) {
        QCOMPARE(policyOf(name), u"Preferred, Preferred"_s);
    }
}

void PlayerLayoutTest::labelsShowTheirTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("indent");
    QTest::newRow("lblCurrentPos") << u"Current position:"_s << -1;
    QTest::newRow("lblHeaderTotal") << u"Total:"_s << -1;
    QTest::newRow("lblAudio") << u"Audio file"_s << 6;
    QTest::newRow("lblChannel") << u"Use channel"_s << -1;
    QTest::newRow("lblSelection") << u"Selection"_s << 6;
    QTest::newRow("lblStart") << u"Start:"_s << -1;
    QTest::newRow("lblEnd") << u"End:"_s << -1;
    QTest::newRow("lblAudioPlayerHint") << QString() << 6;
}

void PlayerLayoutTest::labelsShowTheirTexts()
{
    const auto* label = Child<QLabel>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(label);
    QTEST(label->text(), "text");
    QTEST(label->indent(), "indent");
}

void PlayerLayoutTest::buttonsAreAsTheyShouldBe_data()
{
    QTest::addColumn<bool>("isCheckable");
    QTest::addColumn<bool>("repeats");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("btnMute") << true << false << QString() << QString();
    QTest::newRow("btnStop") << false << false << QString() << QString();
    QTest::newRow("btnPlayPause") << true << false << QString() << QString();
    QTest::newRow("btnLoop") << true << false << QString() << QString();
    QTest::newRow("btnSettings") << false << false << QString() << QString();
    QTest::newRow("btnLoadFile") << false << false << u"Load audio file"_s << QString();
    for (const char* name : {"btnDecSelectionStart", "btnDecSelectionEnd"}) {
        QTest::newRow(name) << false << true << QString() << u"Use CTRL / CMD for coarse decrements"_s;
    }
    for (const char* name : {"btnIncSelectionStart", "btnIncSelectionEnd"}) {
        QTest::newRow(name) << false << true << QString() << u"Use CTRL / CMD for coarse increments"_s;
    }
}

void PlayerLayoutTest::buttonsAreAsTheyShouldBe()
{
    const auto* button = Child<QPushButton>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(button);
    QTEST(button->isCheckable(), "isCheckable");
    QTEST(button->autoRepeat(), "repeats");
    QTEST(button->text(), "text");
    QTEST(button->toolTip(), "toolTip");
    QVERIFY(!button->isChecked());
}

void PlayerLayoutTest::buttonsShowTheirIcons_data()
{
    QTest::addColumn<QString>("resource");
    QTest::newRow("btnMute") << u"Unmute"_s;
    QTest::newRow("btnStop") << u"PlayerStop"_s;
    QTest::newRow("btnPlayPause") << u"PlayerPlay"_s;
    QTest::newRow("btnLoop") << u"PlayerLoop"_s;
    QTest::newRow("btnSettings") << u"Preferences"_s;
    QTest::newRow("btnLoadFile") << u"LoadAudio"_s;
    QTest::newRow("btnDecSelectionStart") << u"DigitalMinus"_s;
    QTest::newRow("btnIncSelectionStart") << u"DigitalPlus"_s;
    QTest::newRow("btnDecSelectionEnd") << u"DigitalMinus"_s;
    QTest::newRow("btnIncSelectionEnd") << u"DigitalPlus"_s;
}

void PlayerLayoutTest::buttonsShowTheirIcons()
{
    QFETCH(QString, resource);
    const auto* button = Child<QPushButton>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(button);
    QCOMPARE(Picture(button->icon()), ResourcePicture(resource));
}

/** Without this the comparisons above might compare one empty picture with another. This program brings the icon
 * for settings along, as every program has to. */
void PlayerLayoutTest::everyIconIsAnother()
{
    QList<QImage> pictures;
    for (const char* name : {"LoadAudio", "PlayerPlay", "PlayerPause", "PlayerStop", "PlayerLoop", "Preferences",
                             "Mute", "Unmute", "DigitalMinus", "DigitalPlus"}) {
        const QImage picture = ResourcePicture(QString::fromLatin1(name));
        QVERIFY2(!picture.isNull() && !pictures.contains(picture), name);
        pictures << picture;
    }
}

void PlayerLayoutTest::timeFieldsAreMaskedAndShareOneValidator_data()
{
    // The mask shows its own point, also where the field is given a comma.
    QTest::addColumn<QString>("text");
    QTest::newRow("edCurrentPosition") << u"00:00:00.000"_s;
    QTest::newRow("edSelectionStart") << u"00:00:00.000"_s;
    QTest::newRow("edSelectionEnd") << u"00:00:00.000"_s;
}

void PlayerLayoutTest::timeFieldsAreMaskedAndShareOneValidator()
{
    const auto* field = Child<QLineEdit>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(field);
    QCOMPARE(field->inputMask(), u"99:99:99.999"_s);
    QCOMPARE(field->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QTEST(field->text(), "text");
    QTEST(field->displayText(), "text");
    QVERIFY(!field->isReadOnly());
    QVERIFY(!field->signalsBlocked());
    QVERIFY(field->validator());
    QCOMPARE(field->validator(), Child<QLineEdit>(u"edCurrentPosition"_s)->validator());
}

void PlayerLayoutTest::theTotalFieldIsReadOnlyAndStartsWithAComma()
{
    const auto* field = Child<QLineEdit>(u"edTotalDuration"_s);
    QCOMPARE(field->text(), u"00:00:00,000"_s);
    QCOMPARE(field->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QVERIFY(field->isReadOnly());
    QCOMPARE(field->inputMask(), QString());
    QVERIFY(!field->validator());
}

void PlayerLayoutTest::theValidatorKnowsTimesOfADay_data()
{
    QTest::addColumn<QValidator::State>("state");
    QTest::newRow("23:59:59.999") << QValidator::Acceptable;
    QTest::newRow("12:00:00,500") << QValidator::Acceptable;
    QTest::newRow("00:00:00.000") << QValidator::Acceptable;
    QTest::newRow("19:59:59x999") << QValidator::Acceptable;
    QTest::newRow("24:00:00.000") << QValidator::Invalid;
    QTest::newRow("30:00:00.000") << QValidator::Invalid;
    QTest::newRow("12:60:00.000") << QValidator::Invalid;
    QTest::newRow("12:00:60.000") << QValidator::Invalid;
    QTest::newRow("12:00:00.0000") << QValidator::Invalid;
    QTest::newRow("12:00:00") << QValidator::Intermediate;
}

void PlayerLayoutTest::theValidatorKnowsTimesOfADay()
{
    QString text = QString::fromLatin1(QTest::currentDataTag());
    int position = 0;
    QTEST(Child<QLineEdit>(u"edSelectionStart"_s)->validator()->validate(text, position), "state");
}

void PlayerLayoutTest::theValidatorHasNoParent()
{
    const QValidator* validator = Child<QLineEdit>(u"edSelectionEnd"_s)->validator();
    QVERIFY(qobject_cast<const QRegularExpressionValidator*>(validator));
    QVERIFY(!validator->parent());
}

void PlayerLayoutTest::theVolumeSliderKeepsTheDefaultRange()
{
    const auto* slider = Child<QSlider>(u"hSliderVolume"_s);
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(slider->minimum(), 0);
    QCOMPARE(slider->maximum(), 99);
    // The volume is 100, which the range does not reach.
    QCOMPARE(Access::Player(*m_player).Volume(), 100);
    QCOMPARE(slider->value(), 99);
    QVERIFY(!slider->signalsBlocked());
}

void PlayerLayoutTest::startsEmpty_data()
{
    QTest::addColumn<bool>("isEnabled");
    for (const char* name : {"btnPlayPause", "cmbboxChannelSelector", "frmSelectionStart", "frmSelectionEnd"}) {
        QTest::newRow(name) << false;
    }
    for (const char* name :
         {"btnMute", "hSliderVolume", "btnStop", "btnLoop", "btnSettings", "edCurrentPosition", "edTotalDuration",
          "btnLoadFile", "frmWaveForm", "frmAudioControls", "frmEditingControls", "frmAudioPlayerHint"}) {
        QTest::newRow(name) << true;
    }
}

void PlayerLayoutTest::startsEmpty()
{
    QTEST(Child(QString::fromLatin1(QTest::currentDataTag()))->isEnabled(), "isEnabled");
    QCOMPARE(Child<QComboBox>(u"cmbboxChannelSelector"_s)->count(), 0);
    QCOMPARE(m_player->GetWritableDirectoryPath(), QString());
    QCOMPARE(m_player->GetOriginalAudioFilePath(), QString());
    QVERIFY(!m_player->IsBusy());
    QVERIFY(!Access::HasSelection(*m_player));
}

void PlayerLayoutTest::startsOutsideEditModeWithoutAHint()
{
    QVERIFY(!Access::Waveform(*m_player).GetEditMode());
    QVERIFY(Child(u"frmEditingControls"_s)->isHidden());
    QVERIFY(Child(u"frmAudioPlayerHint"_s)->isHidden());
    QVERIFY(!Child(u"frmWaveForm"_s)->isHidden());
    QVERIFY(!Child(u"frmAudioControls"_s)->isHidden());
}

void PlayerLayoutTest::takesKeysByClickAndTab()
{
    QCOMPARE(m_player->focusPolicy(), Qt::StrongFocus);
}

void PlayerLayoutTest::ownsPlayerAndWaveform()
{
    QCOMPARE(Access::Player(*m_player).parent(), m_player.get());
    QCOMPARE(NameOfParent(Access::Waveform(*m_player)), u"frmWaveForm"_s);
}

void PlayerLayoutTest::screenReadersFindANameForEachControl()
{
    QStringList names;
    for (QWidget* widget : m_player->findChildren<QWidget*>()) {
        // A combo box has a list of its own, whose name is Qt's concern.
        const bool isPartOfAnother = qobject_cast<QComboBox*>(widget->parentWidget()) != nullptr;
        if (widget->focusPolicy() == Qt::NoFocus || isPartOfAnother || widget->window() != m_player.get()) {
            continue;
        }
        const QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
        QVERIFY(interface != nullptr);
        const QString name = interface->text(QAccessible::Name);
        QVERIFY2(!name.isEmpty(), qPrintable(widget->objectName()));
        QVERIFY2(!names.contains(name), qPrintable(name));
        names << name;
    }
    QVERIFY(names.size() >= 16);
}

void PlayerLayoutTest::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator;
    const RecordingPlayerWidget player;
    const QString context = u"vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget/"_s;
    for (const QLabel* label : m_player->findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) {
            QCOMPARE(player.findChild<QLabel*>(label->objectName())->text(), context + label->text());
        }
    }
    for (const auto* button : m_player->findChildren<QPushButton*>()) {
        const auto* translated = player.findChild<QPushButton*>(button->objectName());
        QCOMPARE(translated->text(), button->text().isEmpty() ? QString() : context + button->text());
        QCOMPARE(translated->toolTip(), button->toolTip().isEmpty() ? QString() : context + button->toolTip());
        QCOMPARE(translated->accessibleName(),
                 button->accessibleName().isEmpty() ? QString() : context + button->accessibleName());
    }
}

void PlayerLayoutTest::flexibleSizesHaveRoomForEveryFont_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("width");
    for (int points = 6; points <= 24; ++points) {
        for (const int width : {0, 700, 1400}) {
            QTest::addRow("%d points, %d pixels", points, width) << points << width;
        }
    }
}

void PlayerLayoutTest::flexibleSizesHaveRoomForEveryFont()
{
    QFETCH(const int, points);
    QFETCH(const int, width);
    AudioPlayerWidget player;
    player.UseFlexibleSizes();
    player.SetEditMode(true);
    player.SetHint(u"a hint"_s);
    QFont font = player.font();
    font.setPointSize(points);
    player.setFont(font);
    player.resize(width, 600);
    player.show();
    QVERIFY(QTest::qWaitForWindowExposed(&player));
    QTRY_COMPARE(FirstThatIsCut(player), QString());
    QCOMPARE(ControlsOf(player).size(), 24);
}

void PlayerLayoutTest::rowsBreakWhereThePlayerIsNarrow()
{
    AudioPlayerWidget player;
    player.UseFlexibleSizes();
    player.SetEditMode(true);
    QFont font = player.font();
    font.setPointSize(9);
    player.setFont(font);
    player.resize(1400, 600);
    player.show();
    QVERIFY(QTest::qWaitForWindowExposed(&player));
    const auto topOf = [&player](const QString& name) {
        return player.findChild<QWidget*>(name)->mapTo(&player, QPoint(0, 0)).y();
    };
    QCOMPARE(topOf(u"lblAudio"_s), topOf(u"lblSelection"_s));
    QVERIFY(player.minimumWidth() <= 480);
    player.resize(480, 600);
    QCOMPARE(player.width(), 480);
    QTRY_VERIFY(topOf(u"lblAudio"_s) < topOf(u"lblSelection"_s));
    const auto* total = player.findChild<QLabel*>(u"lblHeaderTotal"_s);
    const auto* totalField = player.findChild<QLineEdit*>(u"edTotalDuration"_s);
    QVERIFY(totalField->x() - total->geometry().right() < 10 && total->width() <= total->sizeHint().width());
    player.resize(1400, 600);
    QTRY_COMPARE(topOf(u"lblAudio"_s), topOf(u"lblSelection"_s));
}

void PlayerLayoutTest::sizesFollowTheFont()
{
    AudioPlayerWidget player;
    player.UseFlexibleSizes();
    const auto* field = player.findChild<QLineEdit*>(u"edCurrentPosition"_s);
    const auto* button = player.findChild<QPushButton*>(u"btnLoadFile"_s);
    QFont font = player.font();
    font.setPointSize(24);
    player.setFont(font);
    const int large = field->width();
    QVERIFY(button->iconSize().height() > 30);
    font.setPointSize(6);
    player.setFont(font);
    QVERIFY(field->width() < large);
    QVERIFY(field->width() >= 80);
    QCOMPARE(button->iconSize(), QSize(16, 16));
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerLayoutTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerlayout.moc"
