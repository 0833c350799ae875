import QtQuick
import QtTest
import Aulora.Theme

/// A test of a view's live geometry, colours and type.
TestCase {
    id: testCase

    when: windowShown

    readonly property var schemes: [
        {
            tag: "light",
            primary: 0,
            primaryAlpha: 0.85,
            secondary: 0,
            secondaryAlpha: 0.5,
            panel: 1,
            orange: "#FF9500",
            red: "#FF3B30",
            gray: "#8E8E93"
        },
        {
            tag: "dark",
            primary: 1,
            primaryAlpha: 0.85,
            secondary: 1,
            secondaryAlpha: 0.55,
            panel: 0x1E / 255,
            orange: "#FF9F0A",
            red: "#FF453A",
            gray: "#98989D"
        }
    ]

    function useScheme(scheme) {
        Theme.appearanceRawValue = scheme.tag;
    }

    function child(parent, name) {
        const found = findChild(parent, name);
        verify(found !== null, name);
        return found;
    }

    /// All items under `parent`, depth first, that `accepts` accepts.
    function items(parent, accepts) {
        let found = [];
        for (let i = 0; i < parent.children.length; ++i) {
            const item = parent.children[i];
            if (accepts(item))
                found.push(item);
            found = found.concat(items(item, accepts));
        }
        return found;
    }

    function label(parent, text) {
        const found = items(parent, item => item.text === text && item.lineCount !== undefined);
        compare(found.length, 1, text);
        return found[0];
    }

    function symbol(parent, name) {
        const found = items(parent, item => item.name === name && item.size !== undefined);
        compare(found.length, 1, name);
        return found[0];
    }

    /// The name an assistive program reads: the one given, else a control's text.
    function accessibleName(item) {
        return item.Accessible.name || item.text;
    }

    function rectangle(item, reference) {
        const origin = item.mapToItem(reference, 0, 0);
        return Qt.rect(origin.x, origin.y, item.width, item.height);
    }

    function verifyClose(actual, expected, what) {
        verify(Math.abs(actual - expected) < 0.01, what + ": " + actual + ", expected " + expected);
    }

    function verifyColor(actual, expected, what) {
        for (const channel of ["r", "g", "b", "a"])
            verify(Math.abs(actual[channel] - expected[channel]) < 0.005,
                   (what ?? "colour") + ": " + actual + ", expected " + expected);
    }

    function primaryAt(scheme, opacity) {
        const level = scheme.primary;
        return Qt.rgba(level, level, level, scheme.primaryAlpha * opacity);
    }

    function secondary(scheme) {
        const level = scheme.secondary;
        return Qt.rgba(level, level, level, scheme.secondaryAlpha);
    }

    function panelBackground(scheme) {
        return Qt.rgba(scheme.panel, scheme.panel, scheme.panel, 1);
    }

    function accentAt(opacity) {
        return Qt.rgba(0.08, 0.43, 0.32, opacity);
    }

    function accentDeep() {
        return Qt.rgba(0.035, 0.19, 0.16, 1);
    }

    /// The font as asked for; its size is in points of 1/72 inch at one logical pixel a point.
    function verifyType(text, points, weight, tracking) {
        verifyClose(text.font.pointSize * Screen.logicalPixelDensity * 25.4 / 72, points, text.text);
        compare(text.font.weight, weight, text.text);
        // Qt keeps distances in 64ths.
        verify(Math.abs(text.font.letterSpacing - (tracking ?? 0)) < 1 / 64, text.text);
    }

    /// The pointer rests on `over` and then goes to a corner of `outside`.
    function verifyTooltip(tooltip, over, text, outside) {
        compare(tooltip.popup, null, "not made before it is wanted");
        mouseMove(over, over.width / 2, over.height / 2);
        tryVerify(() => tooltip.popup !== null);
        compare(tooltip.popup.text, text);
        compare(tooltip.popup.contentItem.textFormat, Text.PlainText);
        tryCompare(tooltip.popup, "visible", true);
        mouseMove(outside, outside.width - 1, outside.height - 1);
        tryCompare(tooltip.popup, "visible", false);
    }

    function verifySymbol(item, size, weight) {
        compare(item.size, size, item.name);
        compare(item.weight, weight, item.name);
    }
}
