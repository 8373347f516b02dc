#pragma once

/// Takes this process's terminal over with curses, and restores it. Used on the UI thread only, as
/// curses demands.
namespace terminal {

/// Whether the terminal can place text. A "dumb" terminal and an unknown one cannot.
bool isPossible();

/// Sets the process's locale for characters, and for nothing else. Returns whether text is UTF-8,
/// which it also is when the environment names no locale, or a UTF-8 locale that is not installed.
bool setUpCharacters();

/// Makes the terminal deliver single keys without echo, hides the cursor, and has pasted text
/// marked. The terminal is restored by restore(), while the process is stopped from the keyboard,
/// and when the process dies of a fault, unless the fault is a stack overflow.
void takeOver();

/// Restores the terminal. One that takes no output gets what it takes without waiting.
void restore();

/// Sends what differs from what stands on the terminal.
void refreshScreen();

/// For signal handlers: when the terminal takes no output, restores it as far as that goes and
/// returns true; the process must then end at once, since it may be waiting for the terminal, or
/// begin to.
bool endIfStuck();

inline constexpr int kEscapeKey = 27;

/// Keys in addition to those of curses: the marks before and after pasted text.
extern const int kPasteBegins;
extern const int kPasteEnds;

}  // namespace terminal
