#undef GONE
