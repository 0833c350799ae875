pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// Says one sentence to whoever listens to the screen instead of looking at it: of several that
/// come together, the last.
Item {
    id: announcement

    property string sentence

    function say(sentence: string) {
        announcement.sentence = sentence;
        together.restart();
    }

    function speak() {
        // A screen reader is told only of what was not there before.
        visible = false;
        Accessible.name = sentence;
        visible = true;
        gone.restart();
    }

    visible: false
    width: 1
    height: 1
    Accessible.role: Accessible.Notification

    Delay {
        id: together

        interval: 0
        onTriggered: announcement.speak()
    }

    Delay {
        id: gone

        interval: 5000
        onTriggered: announcement.visible = false
    }
}
