/* The third piece, with variables of its own, which are as in the beginning whenever the piece is brought in. */
static int history[64] = {100};

int squares(int n) {
    history[0]++;
    history[1 + n % 63] = n * n;
    return history[0] + history[1 + n % 63] + history[2 + n % 62];
}
