namespace {
int hidden;
void helper() {}
}
