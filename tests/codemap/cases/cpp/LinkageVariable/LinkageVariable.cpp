extern "C" { extern int shared; int own = 1; }
