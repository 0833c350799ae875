// The floor that the program's start and memory are measured against: a Qt Quick window of the same
// size with nothing in it.
#include <QGuiApplication>
#include <QQmlApplicationEngine>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(u"qrc:/qt/qml/EmptyWindow/Main.qml"_s);
    return QGuiApplication::exec();
}
