SELECT 1 FROM parcels;
SELECT parcel_id
FROM parcels
