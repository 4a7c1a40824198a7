typedef int (Sea::*Getter)(void) const;
