#include <QAccessible>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

/// What assistive technology sees of the controls, and that it can use them.
class AccessibleControlsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void rolesAndNames_data();
    void rolesAndNames();
    void pressesAButton();
    void flipsASwitch();
    void picksASegment();
    void alertIsADialog();

private:
    QAccessibleInterface *find(QAccessible::Role role, const QString &name);
    void perform(QAccessible::Role role, const QString &name, const QString &action);

    std::unique_ptr<QQuickView> m_view;
};

namespace {

QAccessibleInterface *findUnder(QAccessibleInterface *parent, QAccessible::Role role,
                                const QString &name)
{
    for (int i = 0; i < parent->childCount(); ++i) {
        auto *child = parent->child(i);
        if (child->role() == role && child->text(QAccessible::Name) == name)
            return child;
        if (auto *found = findUnder(child, role, name))
            return found;
    }
    return nullptr;
}

} // namespace

void AccessibleControlsTest::init()
{
    m_view = std::make_unique<QQuickView>();
    m_view->engine()->addImportPath(u":/qt/qml"_s);
    m_view->setSource(QUrl(u"qrc:/tests/AccessibleControls.qml"_s));
    QVERIFY(m_view->errors().isEmpty());
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    // A screen reader is started when all controls exist already.
    QAccessible::setActive(true);
}

QAccessibleInterface *AccessibleControlsTest::find(QAccessible::Role role, const QString &name)
{
    return findUnder(QAccessible::queryAccessibleInterface(m_view.get()), role, name);
}

void AccessibleControlsTest::perform(QAccessible::Role role, const QString &name,
                                     const QString &action)
{
    auto *element = find(role, name);
    QVERIFY(element);
    auto *actions = element->actionInterface();
    QVERIFY(actions);
    QVERIFY2(actions->actionNames().contains(action),
             qPrintable(actions->actionNames().join(u", ")));
    actions->doAction(action);
}

void AccessibleControlsTest::rolesAndNames_data()
{
    QTest::addColumn<QAccessible::Role>("role");
    QTest::addColumn<QString>("name");

    QTest::newRow("label") << QAccessible::StaticText << u"Preguntá lo que quieras"_s;
    QTest::newRow("plain button") << QAccessible::Button << u"Enviar"_s;
    QTest::newRow("push button") << QAccessible::Button << u"Borrar historial"_s;
    QTest::newRow("switch") << QAccessible::CheckBox << u"Mostrar miniaturas"_s;
    QTest::newRow("segment") << QAccessible::RadioButton << u"Compacto"_s;
    QTest::newRow("selected segment") << QAccessible::RadioButton << u"Normal"_s;
    QTest::newRow("segments' group") << QAccessible::Grouping << u"Tamaño"_s;
}

void AccessibleControlsTest::rolesAndNames()
{
    QFETCH(QAccessible::Role, role);
    QFETCH(QString, name);

    QVERIFY(find(role, name));
    // The text on a control is not an accessible element besides the control.
    if (role != QAccessible::StaticText)
        QVERIFY(!find(QAccessible::StaticText, name));
}

void AccessibleControlsTest::pressesAButton()
{
    perform(QAccessible::Button, u"Enviar"_s, QAccessibleActionInterface::pressAction());
    QCOMPARE(m_view->rootObject()->property("pressCount").toInt(), 1);
}

void AccessibleControlsTest::flipsASwitch()
{
    const QString name = u"Mostrar miniaturas"_s;
    QVERIFY(find(QAccessible::CheckBox, name)->state().checkable);
    QVERIFY(find(QAccessible::CheckBox, name)->state().checked);
    perform(QAccessible::CheckBox, name, QAccessibleActionInterface::toggleAction());
    QVERIFY(!m_view->rootObject()->property("preference").toBool());
    QVERIFY(!find(QAccessible::CheckBox, name)->state().checked);
}

void AccessibleControlsTest::picksASegment()
{
    QVERIFY(find(QAccessible::RadioButton, u"Normal"_s)->state().checked);
    QVERIFY(!find(QAccessible::RadioButton, u"Compacto"_s)->state().checked);
    perform(QAccessible::RadioButton, u"Compacto"_s, QAccessibleActionInterface::toggleAction());
    QCOMPARE(m_view->rootObject()->property("size").toString(), u"compact"_s);
    QVERIFY(find(QAccessible::RadioButton, u"Compacto"_s)->state().checked);
    QVERIFY(!find(QAccessible::RadioButton, u"Normal"_s)->state().checked);
}

void AccessibleControlsTest::alertIsADialog()
{
    // Its name, the title, is only told to a screen reader that runs.
    const QString name;
    QVERIFY(!find(QAccessible::Dialog, name));
    m_view->rootObject()->setProperty("alertPresented", true);
    QTRY_VERIFY(find(QAccessible::Dialog, name));
    auto *dialog = find(QAccessible::Dialog, name);
    QVERIFY(findUnder(dialog, QAccessible::Button, u"Borrar"_s));
    QVERIFY(
        findUnder(dialog, QAccessible::StaticText, u"Se eliminarán todas las conversaciones."_s));
    perform(QAccessible::Button, u"Cancelar"_s, QAccessibleActionInterface::pressAction());
    QVERIFY(!m_view->rootObject()->property("alertPresented").toBool());
    QTRY_VERIFY(!find(QAccessible::Dialog, name));
}

QTEST_MAIN(AccessibleControlsTest)
#include "AccessibleControlsTest.moc"
