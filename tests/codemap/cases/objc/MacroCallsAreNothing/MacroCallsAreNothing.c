MODULE_LICENSE("MIT");
DECLARE_LIST(int, numbers)
int after;
