"""Prints the mails of a folder, a line each, as Python's own reader of mail understands them: read_mail.py <folder>"""
import email
import os
import sys

for name in sorted(os.listdir(sys.argv[1]) if os.path.isdir(sys.argv[1]) else []):
    with open(os.path.join(sys.argv[1], name), "rb") as file:
        mail = email.message_from_binary_file(file)
    text = mail.get_payload(decode=True).decode().replace("\n", "~")
    print(mail["From"], mail["To"], mail["Subject"], text, *mail.defects, sep="|")
