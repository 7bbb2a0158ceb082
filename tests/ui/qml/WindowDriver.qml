import QtQuick
import Velino

// One application window for a test: opens it, unlocks it and finds its items by objectName.
QtObject {
    property var window: null

    function find(item, test) {
        if (!item)
            return null
        if (test(item))
            return item
        for (let i = 0; i < item.children.length; ++i) {
            const found = find(item.children[i], test)
            if (found)
                return found
        }
        return null
    }

    function findNamed(item, name) {
        return find(item, (i) => i.objectName === name)
    }

    function main() {
        const loader = window ? findNamed(window.contentItem, "mainLoader") : null
        return loader ? loader.item : null
    }

    function open() {
        window = AppShell.openWindow()
        return window
    }

    function unlock() {
        window.lockState.password = "Falcon77!"
        window.lockState.unlock()
    }

    function close() {
        if (window)
            window.close()
        window = null
    }
}
