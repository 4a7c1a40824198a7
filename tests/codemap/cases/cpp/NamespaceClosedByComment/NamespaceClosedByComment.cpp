namespace sea {
int a;
} // namespace sea {
int after;
