/* The second piece, with a large table of its own: the length of the words that stand for the digits up to n. */
static const char names[10][200] = {"zero", "one", "two", "three", "four", "five", "six", "seven", "eight", "nine"};

int words(int n) {
    int length = 0;
    for (int i = 0; i < n; i++)
        for (const char *p = names[i % 10]; *p != '\0'; p++) length++;
    return length;
}
