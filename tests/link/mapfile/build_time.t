SOURCE_DATE_EPOCH fixes the time in reports, in UTC wherever it is linked; what is no time fixes nothing.
--- a.s
    .global start
    .section .text, "ax"
start:
    bx lr
--- args
a.o -e start -o out.elf -m out.map
--- case fixed
--- env
SOURCE_DATE_EPOCH=1700000000
TZ=Asia/Tokyo
--- text out.map has
>> Linked Tue Nov 14 22:13:20 2023
--- case the beginning
--- env
SOURCE_DATE_EPOCH=0
--- text out.map has
>> Linked Thu Jan  1 00:00:00 1970
--- case no number
--- env
SOURCE_DATE_EPOCH=1700000000x
--- text out.map lacks
>> Linked Tue Nov 14 22:13:20 2023
--- case beyond all calendars
--- env
SOURCE_DATE_EPOCH=99999999999999999999
--- text out.map lacks
>> Linked Fri Dec 31 23:59:59 9999
--- text out.map has
OUTPUT FILE NAME:   <out.elf>
