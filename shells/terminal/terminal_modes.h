#pragma once

/// Taking this process's terminal over with curses, and leaving it as found. UI thread only, as
/// curses itself.
namespace terminal {

/// Whether the terminal can place text: not a "dumb" one, or one that is not known.
bool isPossible();

/// Sets the locale of characters, and nothing else; true when it is UTF-8. Where none is asked for,
/// or the one asked for is not installed but names UTF-8, the terminal is taken for one.
bool setUpCharacters();

/// Begins with keys one by one, no echo, no cursor, and pasted text told from keys. The terminal is
/// left as found at giveBack(), while the process is stopped from the keyboard, and when it dies of
/// a fault other than a full stack.
void takeOver();
void giveBack();

/// Keys beside those of curses: what stands before and after pasted text.
extern const int kPasteBegins;
extern const int kPasteEnds;

}  // namespace terminal
