using Old [[deprecated]] = int;
