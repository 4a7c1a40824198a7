enum { low, high } level;
