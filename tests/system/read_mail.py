"""Prints the mails of a folder as JSON, as Python's own reader of mail understands them, and removes them: read_mail.py <folder>"""
import base64
import email
import email.utils
import json
import os
import sys


def part(message):
    payload = base64.b64encode(message.get_payload(decode=True)).decode()
    return {"type": message.get_content_type(), "filename": message.get_filename(""), "payload": payload}


def read(path):
    with open(path, "rb") as file:
        mail = email.message_from_binary_file(file)
    os.remove(path)
    headers = [f"{name}: {value}" for name, value in mail.items()]
    own = next(i for i, header in enumerate(headers) if header.startswith("From:"))
    parts = list(mail.walk())
    return {
        "trace": "\n".join(headers[:own]),
        "headers": "\n".join(headers[own:]),
        "sender": list(email.utils.parseaddr(mail["From"])),
        "date": email.utils.parsedate_to_datetime(mail["Date"]).timestamp(),
        "parts": [part(leaf) for leaf in parts if not leaf.is_multipart()],
        "defects": " ".join(type(defect).__name__ for each in parts for defect in each.defects),
    }


folder = sys.argv[1]
names = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
print(json.dumps([read(os.path.join(folder, name)) for name in names]))
