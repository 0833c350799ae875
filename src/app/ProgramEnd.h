// How the program ends by a signal, the end of the session or the loss of the display.
#pragma once

/// From now on SIGTERM, SIGINT and SIGHUP quit the program through its event loop, as closing the
/// window does, so that what was accepted is saved. One that is ignored when this is called, as
/// under nohup, stays ignored. To be called before any thread is started.
void quitOnTerminationSignals();

/// Whether one of these signals has come. One that comes before the event loop runs does not quit
/// by itself.
bool isEndRequested();

/// Ends the process after five seconds if it has not ended by then: a disk or network share that
/// does not answer could block it for ever. If not everything is saved, it prints a line and ends
/// with status 1.
void limitTimeToEnd();

/// Everything is saved: from now on limitTimeToEnd() ends the process with status 0.
void noteAllSaved();
