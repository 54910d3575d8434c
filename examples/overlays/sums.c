/* The first piece: the sum of the numbers from 1 to n. */
int sums(int n) {
    int sum = 0;
    for (int i = 1; i <= n; i++) sum += i;
    return sum;
}
