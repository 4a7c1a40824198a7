// TODO: ask the harbour
/* FIXME: wrong at night */
int shown; // XXX: why
