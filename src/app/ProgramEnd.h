// How the program ends when something other than its window says so.
#pragma once

/// From now on SIGTERM, SIGINT and SIGHUP quit the program through its event loop, as closing the
/// window does, so that what was accepted is saved. One that is ignored when this is called, as
/// under nohup, stays ignored. To be called before any thread is started.
void quitOnTerminationSignals();

/// Whether one of them has come. Before the event loop runs, that alone does not quit.
bool isEndRequested();

/// Ends the process in five seconds, unless it has ended before: a disk or network share that does
/// not answer could hold it for ever. With a line on standard output and status 1, unless all was
/// saved by then.
void limitTimeToEnd();

/// Nothing that the process still does matters to anybody.
void noteAllSaved();
