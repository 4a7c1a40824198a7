_Atomic(int) count;
_Atomic int other;
