#pragma once

class QTranslator;

/// Keeps Qt's remarks about the system (no runtime folder, another character set) from the user's
/// console; QT_LOGGING_RULES in the environment has the last word. To be called before there is a
/// QApplication, which makes the first of them.
void quietenQt();

/// German texts of Qt's own menus and dialogs, out of the program itself.
void installGermanTexts(QTranslator &translator);
