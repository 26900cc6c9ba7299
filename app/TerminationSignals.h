#pragma once

class QObject;

/// Makes SIGTERM, SIGHUP and SIGINT close all windows and dialogs, so that the settings are saved and the program
/// exits with status 0. Commits the text of an open cell editor, as Enter does. `parent` owns the socket notifier.
///
/// Ignores further signals while the program closes: `timeout`, for example, sends SIGTERM twice. Signals that are
/// ignored at the call, as under nohup, stay ignored. Does nothing on systems without these signals.
void closeOnTerminationSignals(QObject *parent);
