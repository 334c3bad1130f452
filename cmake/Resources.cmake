# What is made at build time from resources/.
