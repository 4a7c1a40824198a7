extern "C" void helper(int a);
extern "C" const int kLimit;
